// Parses and prints a small message through the installed library; exits non-zero on a mismatch.
#include <mime/KNMime.h>

#include <iostream>

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
        std::cout << (ok ? "consumer: ok" : "consumer: mismatch") << '\n';
        return ok ? 0 : 1;
    } catch (const KNMimeError& e) {
        std::cerr << "consumer: " << e.why() << '\n';
        return 1;
    }
}
