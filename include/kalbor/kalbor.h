// Kalbor400U: the umbrella header. Applications include this and nothing else.
#ifndef KALBOR_KALBOR_H
#define KALBOR_KALBOR_H

#include <kalbor/platform.h>
#include <kalbor/util.h>
#include <kalbor/memory.h>
#include <kalbor/cstr.h>
#include <kalbor/codepage.h>
#include <kalbor/calendar.h>
#include <kalbor/strings.h>
#include <kalbor/format.h>
#include <kalbor/buffer.h>
#include <kalbor/lists.h>

#endif  // KALBOR_KALBOR_H
