#pragma once

namespace orvo {

/// Makes libosip2's parsers ready, once for the process. They would print every message that they refuse; here they
/// stay silent.
void PrepareOsip();

}  // namespace orvo
