#pragma once

#include "platform/PreferencesSuite.h"

/// The preferences that the helper and its companion share, opened on first use. Without them the
/// program cannot run. Main thread only.
PreferencesSuite& groupPreferences();
