#pragma once

/// Measures the envelope against `openssl speed`, and the decoding of a reply against parsing it.
void benchService();
