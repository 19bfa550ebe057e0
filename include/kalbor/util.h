// Kalbor400U utilities.
//
// The library's one lock (Ka_ThreadMutex), a stopwatch class that is inert on
// this platform (Ka_ElapsedTime), the byte serialisation and inspection of
// doubles, and the debug sink that receives the library's debug output.
#ifndef KALBOR_UTIL_H
#define KALBOR_UTIL_H

#include <kalbor/platform.h>

// Ka_ThreadMutex: a re-entrant lock owning one platform lock record.
// Invariant: the record is initialised by the constructor and destroyed by
// the destructor, and nothing else ever moves or copies it.
class KA_API Ka_ThreadMutex {
 public:
  Ka_ThreadMutex();   // initialises the lock
  ~Ka_ThreadMutex();  // destroys the lock; it must not be held
  Ka_ThreadMutex(const Ka_ThreadMutex&) = delete;

  // Blocks until the calling thread owns the lock; re-entrant.
  void Lock();
  // Deliberately not a try: waits exactly like Lock and always returns 1.
  int TryLock();
  // Releases one level of ownership held by the calling thread.
  void Unlock();
  // Keeps this mutex's own lock: copying a live lock record has no meaning,
  // so assignment is deliberately a no-op.
  Ka_ThreadMutex& operator=(const Ka_ThreadMutex&) { return *this; }

 private:
  alignas(8) unsigned char m_record[KA_LOCK_RECORD_BYTES];
};

// Ka_ElapsedTime: a stopwatch whose interface is kept but which deliberately
// measures nothing: no clock is read and GetElapsedTime is always 0.0.
class KA_API Ka_ElapsedTime {
 public:
  Ka_ElapsedTime() : m_startLow(0), m_startHigh(0) {}
  ~Ka_ElapsedTime() {}
  void SetStartTime() {}                       // records nothing (deliberate)
  double GetElapsedTime() const { return 0.0; }  // always positive zero (deliberate)
  Ka_ElapsedTime& operator=(const Ka_ElapsedTime& o) {
    m_startLow = o.m_startLow;
    m_startHigh = o.m_startHigh;
    return *this;
  }

 private:
  uint32_t m_startLow;   // the 64-bit start time, two 32-bit words, always 0
  uint32_t m_startHigh;
};

// Double serialisation: 8 bytes of the IEEE 754 binary64 pattern, most
// significant byte first.
// Writes d to out[0..7]; out must not be null (a null out writes nothing).
KA_API void ka_dtobyte(double d, char* const out);
// Reads the double written by ka_dtobyte; a null in gives 0.0.
KA_API double ka_bytetod(char* const in);
// The unbiased binary exponent: ((high word >> 20) & 0x7FF) - 1023.
KA_API int ka_dblexponent(double d);
// 1 for an all-ones exponent with the sign clear, -1 with it set, else 0;
// a NaN deliberately counts as an infinity of its sign.
KA_API int ka_isinf(double d);

// The debug sink receives each debug message as one zero-terminated 16-bit
// text. The default writes it to standard error as UTF-8 (on Windows it goes
// to OutputDebugStringW).
typedef void (*Ka_DebugSink)(const ka_wchar* text);
// Installs sink for later messages and returns the sink it replaces; a null
// sink restores the default.
KA_API Ka_DebugSink KaSetDebugSink(Ka_DebugSink sink);

// Writes Ka_WString::Format's text for fmt and the arguments to the debug
// sink as one message; no line end is added. A null fmt writes "".
KA_API void KaDebugMsg(const ka_wchar* fmt, ...);
// Writes the source position prefix "file(line): " (the narrow file name
// through code page 0; "(null)" for a null file) as one message.
KA_API void KaDebugMsg2(const char* file, int line);

// ---- CRC-32, random numbers, clock ------------------------------------------------

// The reflected CRC-32 (polynomial 0xEDB88320, as zlib and PNG) of len bytes
// at buf, continuing crc: 0 starts a computation and a previous result
// continues it, so split buffers give the result of the whole ("123456789"
// gives 0xCBF43926). crc unchanged when len < 1; 0 for a null buf.
KA_API unsigned int ka_crc32(unsigned int crc, const unsigned char* buf, int len);
// A number from lo to hi inclusive: lo + (the first rand() of Microsoft's
// generator seeded with 0, which is 38) modulo hi - lo + 1, so every call
// with the same arguments gives the same number (deliberate). The generator
// is private: the application's rand() is not touched. hi - lo + 1 wraps
// around in 32 bits: when it is 0 (the whole int range, or hi = lo - 1) the
// result is lo; otherwise lo + 38 % |hi - lo + 1|, wrapping around too.
KA_API int ka_random(int lo, int hi);
// Milliseconds since the system started, truncated to 32 bits (wraps after
// about 49.7 days): GetTickCount, or a monotonic clock elsewhere.
KA_API unsigned int ka_getcursec();
// The calling thread's last error code: GetLastError, or errno elsewhere.
KA_API unsigned int ka_getlasterror();
// Puts the process's standard input and output in binary mode, so that
// programs built on the library read and write bytes unchanged: on Windows
// no CR LF translation and no end-of-file byte; elsewhere it does nothing.
KA_API void ka_binarystdio();

#endif  // KALBOR_UTIL_H
