// Ka_AString's out-of-line members and its item handler: each forwards to
// the implementation shared with Ka_WString (strings/string_ops.h).
#include <kalbor/strings.h>

#include <new>

#include "strings/string_ops.h"

namespace {
typedef ka_detail::Ka_StringOps<Ka_AString> Ops;
}

Ka_AString::Ka_AString(char c, int n) : m_pchData(nullptr) { Ops::Fill(*this, c, n); }

void Ka_AString::SetAt(int i, char c) { Ops::SetAt(*this, i, c); }

const Ka_AString& Ka_AString::Set(const char* s, int n) {
  Ops::Set(*this, s, n);
  return *this;
}

const Ka_AString& Ka_AString::operator+=(const Ka_AString& other) {
  Ops::ConcatInPlace(*this, other.m_pchData, other.GetLength());
  return *this;
}

const Ka_AString& Ka_AString::operator+=(const char* s) {
  Ops::ConcatInPlace(*this, s, Traits::Length(s));
  return *this;
}

const Ka_AString& Ka_AString::_AppendOne(char c) {
  Ops::ConcatInPlace(*this, &c, 1);
  return *this;
}

void Ka_AString::FreeExtra(int n) { Ops::FreeExtra(*this, n); }

int Ka_AString::Compare(const char* s) const { return Traits::Compare(m_pchData, s); }
int Ka_AString::CompareNoCase(const char* s) const { return Traits::CompareNoCase(m_pchData, s); }

int Ka_AString::Find(char c, int start) const { return Ops::Find(*this, c, start); }
int Ka_AString::Find(const char* s, int start) const { return Ops::Find(*this, s, start); }
int Ka_AString::Findi(const char* s, int start) const { return Ops::Findi(*this, s, start); }
int Ka_AString::ReverseFind(char c) const { return Ops::ReverseFind(*this, c); }
int Ka_AString::FindOneOf(const char* set) const { return Ops::FindOneOf(*this, set); }

Ka_AString Ka_AString::Mid(int start, int count) const { return Ops::Mid(*this, start, count); }
Ka_AString Ka_AString::Mid(int start) const { return Ops::Mid(*this, start); }
Ka_AString Ka_AString::Left(int n) const { return Ops::Left(*this, n); }
Ka_AString Ka_AString::Right(int n) const { return Ops::Right(*this, n); }

void Ka_AString::TrimLeft() { Ops::TrimLeft(*this); }
void Ka_AString::TrimRight() { Ops::TrimRight(*this); }
void Ka_AString::Trim() {
  Ops::TrimLeft(*this);
  Ops::TrimRight(*this);
}
void Ka_AString::TrimLeft(char c) { Ops::TrimLeft(*this, c); }
void Ka_AString::TrimRight(char c) { Ops::TrimRight(*this, c); }
void Ka_AString::TrimLeft(const char* set) { Ops::TrimLeft(*this, set); }
void Ka_AString::TrimRight(const char* set) { Ops::TrimRight(*this, set); }
void Ka_AString::TrimBrace(int unescape) { Ops::TrimBrace(*this, unescape); }

int Ka_AString::Replace(char from, char to) { return Ops::Replace(*this, from, to); }
int Ka_AString::Replace(const char* from, const char* to) { return Ops::Replace(*this, from, to); }
int Ka_AString::Remove(char c) { return Ops::Remove(*this, c); }
int Ka_AString::Insert(int index, char c) { return Ops::Insert(*this, index, c); }
int Ka_AString::Insert(int index, const char* s) { return Ops::Insert(*this, index, s); }
int Ka_AString::Delete(int index, int count) { return Ops::Delete(*this, index, count); }
void Ka_AString::MakeUpper() { Traits::Upper(GetSafeBuffer(-1)); }
void Ka_AString::MakeLower() { Traits::Lower(GetSafeBuffer(-1)); }
void Ka_AString::MakeReverse() { Traits::SwapCase(GetSafeBuffer(-1)); }

void* Ka_AString::operator new(size_t size) noexcept { return Ops::New(size, _KaAStringHandler.GetPool()); }
void Ka_AString::operator delete(void* p) { Ops::Delete(p, _KaAStringHandler.GetPool()); }
void Ka_AString::InitWithMemory(Ka_AString* p) {
  if (p != nullptr) ::new (static_cast<void*>(p)) Ka_AString();
}
void Ka_AString::FreeWithMemory(Ka_AString* p) {
  if (p != nullptr) p->~Ka_AString();
}

void Ka_AString::ConcatInPlace(const char* s, int n) { Ops::ConcatInPlace(*this, s, n); }
void Ka_AString::AllocBuffer(int n) { Ops::AllocBuffer(*this, n); }
char* Ka_AString::_CopyToNewBuffer(int n) { return Ops::CopyToNewBuffer(*this, n); }

Ka_AString operator+(const Ka_AString& left, const Ka_AString& right) {
  return Ops::Concat(left, right, right.GetLength());
}
Ka_AString operator+(const Ka_AString& left, const char* right) {
  return Ops::Concat(left, right, Ka_AString::Traits::Length(right));
}
Ka_AString operator+(const char* left, const Ka_AString& right) {
  return Ops::Concat(Ka_AString(left), right, right.GetLength());
}

// ---- Item handler ------------------------------------------------------------

Ka_AStringHandler::Ka_AStringHandler() : Ka_ListObjHandler("Ka_AString", static_cast<int>(sizeof(Ka_AString)), 128) {}
void* Ka_AStringHandler::_InitItem(void* object) { return Ops::InitItem(object); }
void Ka_AStringHandler::_FreeItem(void* object) { Ops::FreeItem(object); }
void Ka_AStringHandler::_AssignItem(void* target, void* source) { Ops::AssignItem(target, source); }
int Ka_AStringHandler::_CompareItem(void* item, void* key) { return Ops::CompareItem(item, key); }
