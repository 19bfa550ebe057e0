// Helpers for the buffer and escaping tests: buffers and strings written as
// byte strings, a reading of what they hold, the buffer invariant, runners
// that make an edit on a private value and on a shared one, and text held in
// heap memory of exactly its size, so that AddressSanitizer sees any read
// past its end.
#ifndef KALBOR_TESTS_BUFFER_BUFFER_SUPPORT_H
#define KALBOR_TESTS_BUFFER_BUFFER_SUPPORT_H

#include <gtest/gtest.h>
#include <kalbor/kalbor.h>

#include <memory>
#include <string>

// ---- Buffers -------------------------------------------------------------------

inline const unsigned char* U(const std::string& s) { return reinterpret_cast<const unsigned char*>(s.data()); }

inline Ka_Buffer MakeBuffer(const std::string& bytes) { return Ka_Buffer(U(bytes), static_cast<long>(bytes.size())); }

// The bytes of b over its length.
inline std::string Bytes(const Ka_Buffer& b) {
  const char* p = b;
  return p != nullptr ? std::string(p, static_cast<size_t>(b.GetLength())) : std::string();
}

inline int Refs(const Ka_Buffer& b) {
  const unsigned char* p = b;
  return p != nullptr ? ka_interlocked_read(&Ka_BufferData::FromData(p)->nRefs) : 0;
}

// The invariant: empty, or a counted block whose length fits its capacity.
inline void ExpectWellFormed(const Ka_Buffer& b) {
  const unsigned char* p = b;
  if (p == nullptr) {
    EXPECT_EQ(b.GetLength(), 0);
    EXPECT_EQ(b.GetAllocLength(), 0);
    return;
  }
  EXPECT_GE(Refs(b), 1);
  EXPECT_GE(b.GetLength(), 0);
  EXPECT_LE(b.GetLength(), b.GetAllocLength());
}

// Runs edit(b) on a buffer that holds `bytes` alone, then on one that shares
// them; the other owner must still hold `bytes` afterwards.
template <class Edit>
void OnPrivateAndShared(const std::string& bytes, Edit edit) {
  for (int shared = 0; shared < 2; ++shared) {
    SCOPED_TRACE(shared ? "on a shared buffer" : "on a private buffer");
    Ka_Buffer b = MakeBuffer(bytes), other;
    if (shared) other = b;
    edit(b);
    ExpectWellFormed(b);
    if (shared) {
      EXPECT_EQ(Bytes(other), bytes) << "the edit reached another owner";
    }
  }
}

// ---- Strings of either width ------------------------------------------------------

typedef ::testing::Types<Ka_AString, Ka_WString> BothWidths;

template <class S>
using CharOf = typename S::Traits::Char;

// Text of S's width, one character per byte.
template <class S>
std::basic_string<CharOf<S>> Chars(const std::string& bytes) {
  std::basic_string<CharOf<S>> out;
  for (unsigned char b : bytes) out.push_back(static_cast<CharOf<S>>(b));
  return out;
}

// A string holding exactly these bytes, zeros included ("" gives null).
template <class S>
S Make(const std::string& bytes) {
  const auto text = Chars<S>(bytes);
  return S(text.data(), static_cast<int>(text.size()));
}

// What s holds over its length, one byte per character (wide characters
// above 0xFF do not fit: the tests that make them read them one by one).
template <class S>
std::string Text(const S& s) {
  const CharOf<S>* p = s;
  std::string out;
  for (int i = 0; i < s.GetLength(); ++i) out.push_back(static_cast<char>(p[i]));
  return out;
}

template <class S>
int StringRefs(const S& s) {
  return s.GetData() != nullptr ? ka_interlocked_read(&s.GetData()->nRefs) : 0;
}

// Runs edit(s) on a string that holds `bytes` alone and on one that shares
// them; the other owner must be unchanged and the result well formed.
template <class S, class Edit>
void OnPrivateAndSharedString(const std::string& bytes, Edit edit) {
  for (int shared = 0; shared < 2; ++shared) {
    SCOPED_TRACE(shared ? "on a shared string" : "on a private string");
    S s = Make<S>(bytes), other;
    if (shared) other = s;
    edit(s);
    const CharOf<S>* p = s;
    if (p != nullptr) {
      EXPECT_LE(s.GetLength(), s.GetAllocLength());
      EXPECT_EQ(p[s.GetLength()], 0) << "no terminator after the length";
    }
    if (shared) {
      EXPECT_EQ(Text(other), bytes) << "the edit reached another owner";
    }
  }
}

// ---- Exact-size text ------------------------------------------------------------------

// `text` in a heap array of exactly its size (no terminator unless text ends
// with one): reading one element past it is a heap overflow.
template <class C>
class ExactText {
 public:
  explicit ExactText(const std::basic_string<C>& text) : m_size(text.size()), m_data(new C[text.size() + (text.empty() ? 1 : 0)]) {
    std::copy(text.begin(), text.end(), m_data.get());
  }
  const C* get() const { return m_data.get(); }
  int size() const { return static_cast<int>(m_size); }

 private:
  size_t m_size;
  std::unique_ptr<C[]> m_data;
};

// The locale code page set for one test, restored afterwards.
class LocaleCodePage {
 public:
  explicit LocaleCodePage(unsigned int cp) : m_old(KaSetLocaleCP(cp)) {}
  ~LocaleCodePage() { KaSetLocaleCP(m_old); }

 private:
  unsigned int m_old;
};

#endif  // KALBOR_TESTS_BUFFER_BUFFER_SUPPORT_H
