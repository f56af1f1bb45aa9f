#include "capture/analysis/osip_parser.h"

#include <osipparser2/osip_parser.h>
#include <osipparser2/osip_port.h>

#include <cstdarg>
#include <mutex>
#include <new>

namespace orvo {

void PrepareOsip() {
  static std::once_flag once;
  std::call_once(once, [] {
    osip_trace_initialize_func(OSIP_FATAL, [](const char*, int, osip_trace_level_t, const char*, va_list) {});
    if (parser_init() != 0) throw std::bad_alloc();
  });
}

}  // namespace orvo
