// Placeholder until the parts layer lands: encodes and decodes a sample body.
#include <mime/KNMimeUtils.h>

#include <iostream>

int main()
{
    const KNCString body = "Caf\xc3\xa9 cr\xc3\xa8me";
    const KNCString encoded = KNMimeUtils::encode(body, KNMimeUtils::Base64);
    std::cout << encoded << '\n' << (KNMimeUtils::decode(encoded, KNMimeUtils::Base64) == body) << '\n';
}
