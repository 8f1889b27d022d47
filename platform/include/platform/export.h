// Marks what the platform library exports; everything else is hidden.
#pragma once

#define ORVANE_PLATFORM_EXPORT __attribute__((visibility("default")))
