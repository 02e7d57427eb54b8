// Handle-body semantics of the content types and the content disposition: sharing, deep
// copies and empty handles.
#include <mime/KNMimeContentDisposition.h>
#include <mime/KNMimeContentType.h>
#include <mime/KNMimeMultipartRelatedType.h>
#include <mime/KNMimeMultipartType.h>
#include <mime/KNMimeTextType.h>

#include <foundation/KNTHRInvalidPointer.h>

#include <gtest/gtest.h>

#include <functional>
#include <vector>

namespace {

template <class Handle>
void expectAssignmentSharesAndCopyDoesNot(const Handle& a, Handle b)
{
    Handle& alias = b;
    b = alias; // must not let go of a body it holds alone
    EXPECT_EQ(b.body()->referenceCount(), 1u);
    b = a;
    b.setParameterValue("x", "1");
    EXPECT_EQ(a.getParameterValue("x"), "1");
    EXPECT_EQ(a.body()->referenceCount(), 2u);
    b = a.copy();
    EXPECT_FALSE(b.sharesBodyWith(a));
    EXPECT_EQ(b.body()->referenceCount(), 1u);
    EXPECT_EQ(b, a);
    b.setParameterValue("x", "2");
    EXPECT_NE(b, a);
    EXPECT_EQ(a.getParameterValue("x"), "1");
}

TEST(KNMimeHandleTest, AssignmentSharesTheBodyAndCopyDoesNot)
{
    expectAssignmentSharesAndCopyDoesNot(KNMimeContentType("text", "plain", {}), KNMimeContentType());
    // The clone of a specialised type keeps its media type: the copy converts back.
    expectAssignmentSharesAndCopyDoesNot(KNMimeMultipartType("mixed", "b"), KNMimeMultipartType());
    expectAssignmentSharesAndCopyDoesNot(KNMimeContentDisposition("inline", "f"), KNMimeContentDisposition());
}

TEST(KNMimeHandleTest, EveryOperationOnAnEmptyHandleThrowsInvalidPointer)
{
    KNMimeContentType type(static_cast<KNMimeContentTypeImp*>(nullptr));
    KNMimeTextType text(static_cast<KNMimeContentTypeImp*>(nullptr));
    KNMimeMultipartRelatedType related(static_cast<KNMimeContentTypeImp*>(nullptr));
    KNMimeContentDisposition disposition(nullptr);
    const KNMimeContentType fullType;
    const KNMimeContentDisposition fullDisposition;
    const std::vector<std::function<void()>> operations = {
        [&] { type.copy(); },
        [&] { type.fromString("no separator"); }, // refused before the text is read
        [&] { type.asString(); },
        [&] { type.getParameter(0); },            // not the bounds error
        [&] { (void)(fullType == type); },
        [&] { KNMimeMultipartRelatedType r(type); },
        [&] { text.setCharset("x"); },
        [&] { related.fromString("multipart/related"); },
        [&] { disposition.copy(); },
        [&] { disposition.setFilename("x"); },
        [&] { disposition.fromString("inline;;"); },
        [&] { (void)(disposition != fullDisposition); },
    };
    for (std::size_t i = 0; i < operations.size(); ++i) {
        try {
            operations[i]();
            ADD_FAILURE() << "operation " << i << " did not throw";
        } catch (const KNTHRInvalidPointer& e) {
            EXPECT_EQ(e.why(), "Invalid pointer") << "operation " << i;
        }
    }
    KNMimeContentType copied = type; // sharing nothing is allowed
    EXPECT_TRUE(copied.isEmpty());
}

} // namespace
