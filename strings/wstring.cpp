// Ka_WString's out-of-line members and its item handler: each forwards to
// the implementation shared with Ka_AString (strings/string_ops.h).
#include <kalbor/strings.h>

#include <new>

#include "strings/string_ops.h"

namespace {
typedef ka_detail::Ka_StringOps<Ka_WString> Ops;
}

Ka_WString::Ka_WString(ka_wchar c, int n) : m_pchData(nullptr) { Ops::Fill(*this, c, n); }

void Ka_WString::SetAt(int i, ka_wchar c) { Ops::SetAt(*this, i, c); }

const Ka_WString& Ka_WString::Set(const ka_wchar* s, int n) {
  Ops::Set(*this, s, n);
  return *this;
}

const Ka_WString& Ka_WString::operator+=(const Ka_WString& other) {
  Ops::ConcatInPlace(*this, other.m_pchData, other.GetLength());
  return *this;
}

const Ka_WString& Ka_WString::operator+=(const ka_wchar* s) {
  Ops::ConcatInPlace(*this, s, Traits::Length(s));
  return *this;
}

const Ka_WString& Ka_WString::_AppendOne(ka_wchar c) {
  Ops::ConcatInPlace(*this, &c, 1);
  return *this;
}

void Ka_WString::FreeExtra(int n) { Ops::FreeExtra(*this, n); }

int Ka_WString::Compare(const ka_wchar* s) const { return Traits::Compare(m_pchData, s); }
int Ka_WString::CompareNoCase(const ka_wchar* s) const { return Traits::CompareNoCase(m_pchData, s); }

int Ka_WString::Find(ka_wchar c, int start) const { return Ops::Find(*this, c, start); }
int Ka_WString::Find(const ka_wchar* s, int start) const { return Ops::Find(*this, s, start); }
int Ka_WString::Findi(const ka_wchar* s, int start) const { return Ops::Findi(*this, s, start); }
int Ka_WString::ReverseFind(ka_wchar c) const { return Ops::ReverseFind(*this, c); }
int Ka_WString::FindOneOf(const ka_wchar* set) const { return Ops::FindOneOf(*this, set); }

Ka_WString Ka_WString::Mid(int start, int count) const { return Ops::Mid(*this, start, count); }
Ka_WString Ka_WString::Mid(int start) const { return Ops::Mid(*this, start); }
Ka_WString Ka_WString::Left(int n) const { return Ops::Left(*this, n); }
Ka_WString Ka_WString::Right(int n) const { return Ops::Right(*this, n); }

void Ka_WString::TrimLeft() { Ops::TrimLeft(*this); }
void Ka_WString::TrimRight() { Ops::TrimRight(*this); }
void Ka_WString::Trim() {
  Ops::TrimLeft(*this);
  Ops::TrimRight(*this);
}
void Ka_WString::TrimLeft(ka_wchar c) { Ops::TrimLeft(*this, c); }
void Ka_WString::TrimRight(ka_wchar c) { Ops::TrimRight(*this, c); }
void Ka_WString::TrimLeft(const ka_wchar* set) { Ops::TrimLeft(*this, set); }
void Ka_WString::TrimRight(const ka_wchar* set) { Ops::TrimRight(*this, set); }
void Ka_WString::TrimBrace(int unescape) { Ops::TrimBrace(*this, unescape); }

int Ka_WString::Replace(ka_wchar from, ka_wchar to) { return Ops::Replace(*this, from, to); }
int Ka_WString::Replace(const ka_wchar* from, const ka_wchar* to) { return Ops::Replace(*this, from, to); }
int Ka_WString::Remove(ka_wchar c) { return Ops::Remove(*this, c); }
int Ka_WString::Insert(int index, ka_wchar c) { return Ops::Insert(*this, index, c); }
int Ka_WString::Insert(int index, const ka_wchar* s) { return Ops::Insert(*this, index, s); }
int Ka_WString::Delete(int index, int count) { return Ops::Delete(*this, index, count); }
void Ka_WString::MakeUpper() { Traits::Upper(GetSafeBuffer(-1)); }
void Ka_WString::MakeLower() { Traits::Lower(GetSafeBuffer(-1)); }
void Ka_WString::MakeReverse() { Traits::SwapCase(GetSafeBuffer(-1)); }

void* Ka_WString::operator new(size_t size) noexcept { return Ops::New(size, _KaWStringHandler.GetPool()); }
void Ka_WString::operator delete(void* p) { Ops::Delete(p, _KaWStringHandler.GetPool()); }
void Ka_WString::InitWithMemory(Ka_WString* p) {
  if (p != nullptr) ::new (static_cast<void*>(p)) Ka_WString();
}
void Ka_WString::FreeWithMemory(Ka_WString* p) {
  if (p != nullptr) p->~Ka_WString();
}

void Ka_WString::ConcatInPlace(const ka_wchar* s, int n) { Ops::ConcatInPlace(*this, s, n); }
void Ka_WString::AllocBuffer(int n) { Ops::AllocBuffer(*this, n); }
ka_wchar* Ka_WString::_CopyToNewBuffer(int n) { return Ops::CopyToNewBuffer(*this, n); }

Ka_WString operator+(const Ka_WString& left, const Ka_WString& right) {
  return Ops::Concat(left, right, right.GetLength());
}
Ka_WString operator+(const Ka_WString& left, const ka_wchar* right) {
  return Ops::Concat(left, right, Ka_WString::Traits::Length(right));
}
Ka_WString operator+(const ka_wchar* left, const Ka_WString& right) {
  return Ops::Concat(Ka_WString(left), right, right.GetLength());
}

// ---- Item handler ------------------------------------------------------------

Ka_WStringHandler::Ka_WStringHandler() : Ka_ListObjHandler("Ka_WString", static_cast<int>(sizeof(Ka_WString)), 128) {}
void* Ka_WStringHandler::_InitItem(void* object) { return Ops::InitItem(object); }
void Ka_WStringHandler::_FreeItem(void* object) { Ops::FreeItem(object); }
void Ka_WStringHandler::_AssignItem(void* target, void* source) { Ops::AssignItem(target, source); }
int Ka_WStringHandler::_CompareItem(void* item, void* key) { return Ops::CompareItem(item, key); }
