#ifndef KN_MIME_INTERNAL_KNMIMEENTITYPARSE_H
#define KN_MIME_INTERNAL_KNMIMEENTITYPARSE_H

// One parse of an entity text: the outermost text every nested part is a view into, and how
// the multiparts in it find their delimiter lines. Not installed: internal to the library
// (exported only so that the tests can compare the ways of searching).

#include <foundation/KNExport.h>
#include <mime/KNMimePart.h>
#include <mime/internal/KNMimeDelimiterIndex.h>

#include <cstddef>
#include <optional>
#include <string_view>

class KNMimeMultipartImp;
class KNSubstringFinder;

class KNMIME_EXPORT KNMimeEntityParse {
public:
    // How delimiters are searched for. Every way finds the same ones.
    enum class Search {
        // Directly in each multipart's own text until a multipart turns out to be nested in
        // another; from then on through an index of the dash runs of the whole text, so that
        // nested text is not scanned again at every level; directly again for a text so full of
        // dash runs that the index would be large. What the library uses.
        Nested,
        // Through the index from the first multipart on, however many dash runs it holds.
        Indexed,
        // Always directly in each multipart's own text.
        Direct,
    };

    // A parse of `text`, which must outlive it.
    explicit KNMimeEntityParse(std::string_view text, Search search = Search::Nested);
    ~KNMimeEntityParse();
    KNMimeEntityParse(const KNMimeEntityParse&) = delete;
    KNMimeEntityParse& operator=(const KNMimeEntityParse&) = delete;

    // The text parsed as a complete entity outside any multipart (see
    // KNMimeEntityText::parseEntity).
    KNMimePart entity(bool requireMultipart);
    // The text parsed as the body of `multipart`, the first level of nesting (see
    // KNMimeEntityText::parseMultipartBody).
    void multipartBody(KNMimeMultipartImp& multipart);

    // As delimiter.find(slice, from), for the multipart at nesting `level` whose body `slice`
    // is, a view into the text of this parse.
    std::size_t findDelimiter(const KNSubstringFinder& delimiter, std::string_view slice, std::size_t from,
                              unsigned level);

    // Appends a part the parse has just built to `multipart`. Such a part cannot hold the
    // multipart, so the cycle check of insertPart, which walks the whole new subtree, is skipped.
    static void appendPart(KNMimeMultipartImp& multipart, const KNMimePart& part);

private:
    std::string_view text_;
    Search search_;
    unsigned outermostLevel_ = 0; // level of the first multipart that searched; 0 before
    std::optional<KNMimeDelimiterIndex> index_; // made when first needed
};

#endif
