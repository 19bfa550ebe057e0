// Helpers of the utilities shared with other subsystems (internal).
#ifndef KALBOR_UTIL_INTERNAL_H
#define KALBOR_UTIL_INTERNAL_H

#include <kalbor/platform.h>

namespace ka_detail {
// Hands one zero-terminated debug message to the installed sink, or to the
// platform's debug channel when none is installed.
void EmitDebugText(const ka_wchar* text);
}  // namespace ka_detail

#endif  // KALBOR_UTIL_INTERNAL_H
