// The escaping members of Ka_AString and Ka_WString: each forwards to the
// implementation both widths share (strings/escape_ops.h).
#include <kalbor/strings.h>

#include "strings/escape_ops.h"

namespace ka_detail {

Ka_AString EncodeUrlBytes(const Ka_AString& bytes) {
  typedef Ka_EscapeOps<Ka_AString> Ops;
  static const char kHex[] = "0123456789ABCDEF";
  const int length = bytes.GetLength();
  const char* const p = bytes;
  int64_t escaped = 0;
  for (int i = 0; i < length; ++i) escaped += !Ops::UrlSafe(Ops::Code(p[i]));
  if (escaped == 0) return bytes;
  Ka_AString result;
  char* out = Ops::NewText(result, length + 2 * escaped);
  if (out == nullptr) return result;
  for (int i = 0; i < length; ++i) {
    const uint32_t b = Ops::Code(p[i]);
    if (Ops::UrlSafe(b)) {
      *out++ = p[i];
    } else {  // a blank too: "%20"
      out[0] = '%';
      out[1] = kHex[b >> 4];
      out[2] = kHex[b & 15];
      out += 3;
    }
  }
  return result;
}

}  // namespace ka_detail

namespace {
typedef ka_detail::Ka_EscapeOps<Ka_AString> NarrowOps;
typedef ka_detail::Ka_EscapeOps<Ka_WString> WideOps;
}  // namespace

// ---- Ka_AString ----------------------------------------------------------------

Ka_AString Ka_AString::QuoteStr(char quote) const { return NarrowOps::QuoteStr(*this, quote); }
Ka_AString Ka_AString::UnQuoteStr() const { return NarrowOps::UnQuoteStr(*this); }
Ka_AString Ka_AString::EncodeXml() const { return NarrowOps::EncodeXml(*this); }
Ka_AString Ka_AString::EncodeUrl() const { return NarrowOps::EncodeUrl(*this); }

Ka_AString Ka_AString::DecodeXml() const {
  Ka_AString result;
  result.DecodeXml(*this);
  return result;
}
const Ka_AString& Ka_AString::DecodeXml(const char* text, int n) {
  NarrowOps::DecodeText(*this, text, n, '&', [this](const char* t, int m) { _DecodeXml(t, m); });
  return *this;
}
const Ka_AString& Ka_AString::DecodeXml(const Ka_AString& text) {
  NarrowOps::DecodeString(*this, text, '&', [this](const char* t, int m) { _DecodeXml(t, m); });
  return *this;
}
void Ka_AString::_DecodeXml(const char* text, int n) { NarrowOps::DecodeXml(*this, text, n); }

Ka_AString Ka_AString::DecodeUrl() const {
  Ka_AString result;
  result.DecodeUrl(*this);
  return result;
}
const Ka_AString& Ka_AString::DecodeUrl(const char* text, int n) {
  NarrowOps::DecodeText(*this, text, n, '%', [this](const char* t, int m) { _DecodeUrl(t, m); });
  return *this;
}
const Ka_AString& Ka_AString::DecodeUrl(const Ka_AString& text) {
  NarrowOps::DecodeString(*this, text, '%', [this](const char* t, int m) { _DecodeUrl(t, m); });
  return *this;
}
void Ka_AString::_DecodeUrl(const char* text, int n) { NarrowOps::DecodeUrl(*this, text, n); }

// ---- Ka_WString ----------------------------------------------------------------

Ka_WString Ka_WString::QuoteStr(ka_wchar quote) const { return WideOps::QuoteStr(*this, quote); }
Ka_WString Ka_WString::UnQuoteStr() const { return WideOps::UnQuoteStr(*this); }
Ka_WString Ka_WString::EncodeXml() const { return WideOps::EncodeXml(*this); }
Ka_WString Ka_WString::EncodeUrl() const { return WideOps::EncodeUrl(*this); }

Ka_WString Ka_WString::DecodeXml() const {
  Ka_WString result;
  result.DecodeXml(*this);
  return result;
}
const Ka_WString& Ka_WString::DecodeXml(const ka_wchar* text, int n) {
  WideOps::DecodeText(*this, text, n, ka_wchar('&'), [this](const ka_wchar* t, int m) { _DecodeXml(t, m); });
  return *this;
}
const Ka_WString& Ka_WString::DecodeXml(const Ka_WString& text) {
  WideOps::DecodeString(*this, text, ka_wchar('&'), [this](const ka_wchar* t, int m) { _DecodeXml(t, m); });
  return *this;
}
void Ka_WString::_DecodeXml(const ka_wchar* text, int n) { WideOps::DecodeXml(*this, text, n); }

Ka_WString Ka_WString::DecodeUrl() const {
  Ka_WString result;
  result.DecodeUrl(*this);
  return result;
}
const Ka_WString& Ka_WString::DecodeUrl(const ka_wchar* text, int n) {
  WideOps::DecodeText(*this, text, n, ka_wchar('%'), [this](const ka_wchar* t, int m) { _DecodeUrl(t, m); });
  return *this;
}
const Ka_WString& Ka_WString::DecodeUrl(const Ka_WString& text) {
  WideOps::DecodeString(*this, text, ka_wchar('%'), [this](const ka_wchar* t, int m) { _DecodeUrl(t, m); });
  return *this;
}
void Ka_WString::_DecodeUrl(const ka_wchar* text, int n) { WideOps::DecodeUrl(*this, text, n); }
