// The forgiving mail layer: nothing throws or reads out of bounds, every text it gives is
// valid UTF-8, and what it writes reads back equal.
#include <mail/KNMimeMail.h>

#include <cstddef>
#include <cstdint>

namespace {

void check(bool condition)
{
    if (!condition)
        __builtin_trap();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const KNCString text(reinterpret_cast<const char*>(data), size);

    check(KNMimeCharset::isValidUtf8(KNMimeHeaderText::decode(text)));
    check(KNMimeCharset::isValidUtf8(KNMimeCharset::toUtf8(text, "shift_jis").text));
    check(KNMimeCharset::isValidUtf8(KNMimeCharset::toUtf8(text, "x-unknown").text));
    if (KNMimeCharset::isValidUtf8(text)) {
        check(KNMimeHeaderText::decode(KNMimeHeaderText::encode(text)) == text);
        check(KNMimeHeaderText::decode(KNMimeHeaderText::encodeWords(text)) == text);
    }

    const KNMimeExtendedParameters parameters = KNMimeExtendedParameters::fromHeaderValue(text);
    for (std::size_t i = 0; i < parameters.getCount(); ++i) {
        const auto value = parameters.get(parameters.getRaw(i).first);
        check(value.has_value() && KNMimeCharset::isValidUtf8(*value));
    }

    const KNMimeAddressList list = KNMimeAddressList::parse(text);
    for (const KNMimeAddress& address : list)
        check(KNMimeCharset::isValidUtf8(address.getName()) && KNMimeCharset::isValidUtf8(address.getGroup()));
    check(KNMimeAddressList::parse(list.encode()) == list);

    if (const auto date = KNMimeDate::parse(text))
        check(KNMimeDate::parse(date->asString()) == date);

    (void)KNMimeBodyDecoder::decodeBase64(text);
    (void)KNMimeBodyDecoder::decodeQuotedPrintable(text);
    (void)KNMimeBodyDecoder::decodeUUEncode(text);
    (void)KNMimeBodyDecoder::encodingByName(text);
    return 0;
}
