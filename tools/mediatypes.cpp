#include "mediatypes.h"

#include <foundation/KNCString.h>

namespace {

struct Extension {
    const char* extension;
    const char* mediaType;
};

// One row per extension; where two extensions share a type, the first is the one written.
const Extension Table[] = {
    {".txt", "text/plain"},       {".html", "text/html"},        {".htm", "text/html"},
    {".csv", "text/csv"},         {".ics", "text/calendar"},     {".vcf", "text/vcard"},
    {".xml", "application/xml"},  {".json", "application/json"}, {".pdf", "application/pdf"},
    {".zip", "application/zip"},  {".gz", "application/gzip"},   {".png", "image/png"},
    {".jpg", "image/jpeg"},       {".jpeg", "image/jpeg"},       {".gif", "image/gif"},
    {".webp", "image/webp"},      {".svg", "image/svg+xml"},     {".mp3", "audio/mpeg"},
    {".wav", "audio/wav"},        {".mp4", "video/mp4"},         {".eml", "message/rfc822"},
    {".docx", "application/vnd.openxmlformats-officedocument.wordprocessingml.document"},
    {".xlsx", "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet"},
    {".odt", "application/vnd.oasis.opendocument.text"},
};

} // namespace

KNCString extensionFor(std::string_view mediaType)
{
    for (const Extension& row : Table) {
        if (mediaType == row.mediaType)
            return row.extension;
    }
    return ".bin";
}

KNCString mediaTypeForFile(std::string_view filename)
{
    const std::size_t dot = filename.rfind('.');
    if (dot != std::string_view::npos && filename.find('/', dot) == std::string_view::npos) {
        const KNCString extension(filename.substr(dot));
        for (const Extension& row : Table) {
            if (knEqualsIgnoreCase(extension, row.extension))
                return row.mediaType;
        }
    }
    return "application/octet-stream";
}
