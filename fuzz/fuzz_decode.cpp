// The decoders of outside text: Base64 into a byte buffer, and the XML, URL
// and quote decoders of both string widths. What an encoder writes must
// decode back to what it was given.
#include <kalbor/kalbor.h>

#include <cstring>
#include <string>

#include "fuzz/fuzz_support.h"

namespace {

template <class S, class C>
void Decoders(const std::basic_string<C>& input) {
  const S s(input.c_str(), static_cast<int>(input.size()));
  S target;
  target.DecodeXml(input.c_str(), static_cast<int>(input.size()));
  Check(Text(target) == Text(s.DecodeXml()), "DecodeXml of a text and of a string differ");
  target.DecodeUrl(input.c_str(), -1);
  (void)s.DecodeUrl();
  (void)s.UnQuoteStr();

  // The round trips work on the text before its first zero, which every
  // decoder ends at.
  const S text(input.c_str(), -1);
  const std::basic_string<C> plain = Text(text);
  Check(Text(text.EncodeXml().DecodeXml()) == plain, "XML encoding does not decode back");
  if (plain.empty()) return;  // QuoteStr leaves an empty string without quotes
  const C quote = input.size() % 2 == 0 ? C('\'') : C('"');
  Check(Text(text.QuoteStr(quote).UnQuoteStr()) == plain, "quoting does not unquote back");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  // The Base64 decoder reads up to a byte outside its alphabet, whatever
  // length it is given: the terminator of the copy is that byte here.
  const std::string input(reinterpret_cast<const char*>(data), size);
  Ka_Buffer bytes;
  bytes.DecodeBase64(input.c_str(), static_cast<long>(size));
  const Ka_AString base64 = bytes.EncodeBase64();
  Ka_Buffer again;
  again.DecodeBase64(base64, base64.GetLength());
  Check(again.GetLength() == bytes.GetLength() &&
            (bytes.GetLength() == 0 || std::memcmp(again.GetPtr(0), bytes.GetPtr(0), bytes.GetLength()) == 0),
        "Base64 encoding does not decode back");
  Decoders<Ka_AString>(input);
  // URL decoding gives bytes, and encoding a narrow text gives what it held.
  const Ka_AString text(input.c_str(), -1);
  Check(Text(text.EncodeUrl().DecodeUrl()) == Text(text), "URL encoding does not decode back");
  Decoders<Ka_WString>(Wide(input));
  return 0;
}
