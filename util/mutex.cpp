// Ka_ThreadMutex: the library's one lock, a thin owner of the platform's
// recursive lock record.
#include <kalbor/util.h>

#include "platform/platform.h"

Ka_ThreadMutex::Ka_ThreadMutex() { ka_platform::LockInit(m_record); }
Ka_ThreadMutex::~Ka_ThreadMutex() { ka_platform::LockDestroy(m_record); }
void Ka_ThreadMutex::Lock() { ka_platform::LockEnter(m_record); }
int Ka_ThreadMutex::TryLock() {
  Lock();  // deliberately blocking: this "try" always waits and succeeds
  return 1;
}
void Ka_ThreadMutex::Unlock() { ka_platform::LockLeave(m_record); }
