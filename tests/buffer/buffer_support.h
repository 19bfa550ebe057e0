// Helpers for the buffer and escaping tests: buffers and strings of either
// width made from and read as byte strings, a runner that makes an edit on a
// private value and on a shared one and checks their invariant, and text in
// heap memory of exactly its size, so that AddressSanitizer sees any read
// past it.
#ifndef KALBOR_TESTS_BUFFER_BUFFER_SUPPORT_H
#define KALBOR_TESTS_BUFFER_BUFFER_SUPPORT_H

#include <gtest/gtest.h>
#include <kalbor/kalbor.h>

#include <memory>
#include <string>
#include <type_traits>

typedef ::testing::Types<Ka_AString, Ka_WString> BothWidths;

template <class S>
using CharOf = typename S::Traits::Char;

inline const unsigned char* U(const std::string& s) { return reinterpret_cast<const unsigned char*>(s.data()); }

inline Ka_Buffer MakeBuffer(const std::string& bytes) { return Ka_Buffer(U(bytes), static_cast<long>(bytes.size())); }

// Text of S's width, one character per byte.
template <class S>
std::basic_string<CharOf<S>> Chars(const std::string& bytes) {
  std::basic_string<CharOf<S>> out;
  for (unsigned char b : bytes) out.push_back(static_cast<CharOf<S>>(b));
  return out;
}

// A value holding exactly these bytes, zeros included ("" gives null).
template <class V>
V Make(const std::string& bytes) {
  const auto text = Chars<V>(bytes);
  return V(text.data(), static_cast<int>(text.size()));
}
template <>
inline Ka_Buffer Make<Ka_Buffer>(const std::string& bytes) { return MakeBuffer(bytes); }

// What a buffer or string holds over its length, one byte per element
// (wide characters above 0xFF are read one by one where they occur).
inline std::string Text(const Ka_Buffer& b) { return std::string(b.GetPtr(0), b.GetPtr(b.GetLength())); }
template <class S>
std::string Text(const S& s) {
  const CharOf<S>* p = s;
  return std::string(p, p + s.GetLength());
}

// Runs edit(v) on a value that holds `bytes` alone, then on one that shares
// them; the value keeps its invariant (its length fits its capacity, a
// string's text is followed by a zero), and the other owner must still hold
// `bytes` afterwards.
template <class V, class Edit>
void OnPrivateAndShared(const std::string& bytes, Edit edit) {
  for (int shared = 0; shared < 2; ++shared) {
    SCOPED_TRACE(shared ? "shared" : "private");
    V v = Make<V>(bytes), other;
    if (shared) other = v;
    edit(v);
    EXPECT_LE(v.GetLength(), v.GetAllocLength());
    if constexpr (!std::is_same<V, Ka_Buffer>::value) {
      const CharOf<V>* p = v;
      EXPECT_TRUE(p == nullptr || p[v.GetLength()] == 0) << "no terminator after the length";
    }
    EXPECT_TRUE(!shared || Text(other) == bytes) << "the edit reached another owner: " << Text(other);
  }
}

// `text` in a heap array of exactly its size (no terminator unless it ends
// with one): reading one element past it is a heap overflow.
template <class C>
std::unique_ptr<C[]> Exact(const std::basic_string<C>& text) {
  std::unique_ptr<C[]> p(new C[text.empty() ? 1 : text.size()]);
  std::copy(text.begin(), text.end(), p.get());
  return p;
}

#endif  // KALBOR_TESTS_BUFFER_BUFFER_SUPPORT_H
