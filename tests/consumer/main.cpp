// Parses and prints a small message through the installed library; exits non-zero on a mismatch.
// Built by CI through find_package (CMakeLists.txt here) and with pkg-config's flags.
#include <mime/KNMime.h>

#include <iostream>

static_assert(KNMIME_VERSION_MAJOR >= 0 && KNMIME_VERSION_MINOR >= 0 && KNMIME_VERSION_PATCH >= 0,
              "the version header defines the version numbers");

int main()
{
    const KNCString text =
        "MIME-Version: 1.0\r\n"
        "Content-Type: multipart/mixed; boundary=\"b1\"\r\n"
        "\r\n"
        "--b1\r\n"
        "Content-Type: text/plain; charset=\"us-ascii\"\r\n"
        "\r\n"
        "hello\r\n"
        "--b1--\r\n";
    try {
        KNMimePart message;
        message.fromString(text);
        KNMimeMultipart multipart(message);
        const bool ok = multipart.getPartCount() == 1 && multipart.getPart(0).getBody() == "hello" &&
                        message.asString() == text;
        std::cout << (ok ? "consumer: ok" : "consumer: mismatch") << " (knmime " KNMIME_VERSION_STRING ")\n";
        return ok ? 0 : 1;
    } catch (const KNMimeError& e) {
        std::cerr << "consumer: " << e.why() << '\n';
        return 1;
    }
}
