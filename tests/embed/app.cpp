// Calls into the parent's own library and into the plugin that holds knmime.
#include <iostream>
#include <string>

int embedAnswer();
std::string pluginMediaType(const std::string& text);

int main()
{
    const std::string type = pluginMediaType("Content-Type: image/png\r\n\r\nbody");
    const bool ok = embedAnswer() == 1 && type == "image";
    std::cout << (ok ? "embed: ok" : "embed: mismatch") << '\n';
    return ok ? 0 : 1;
}
