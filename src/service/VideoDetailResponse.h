#pragma once

#include "service/ServiceReply.h"
#include "service/VideoDetail.h"

/// The reply with one video.
using VideoDetailResponse = ServiceReply<VideoDetail>;
