#pragma once

/// Marks what the shared platform library offers to the command, the engine and the report module.
#define ORVO_PLATFORM_API __attribute__((visibility("default")))
