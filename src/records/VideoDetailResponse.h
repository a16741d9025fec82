#pragma once

#include "records/ServiceReply.h"
#include "records/VideoDetail.h"

/// The reply with one video.
using VideoDetailResponse = ServiceReply<VideoDetail>;
