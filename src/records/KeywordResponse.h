#pragma once

#include "records/ServiceReply.h"

#include <QString>

#include <vector>

/// The reply with suggestions of search words.
using KeywordResponse = ServiceReply<std::vector<QString>>;
