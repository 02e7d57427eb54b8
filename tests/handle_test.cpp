// Handle-body semantics of the content types and the content disposition: sharing, deep
// copies, self-assignment, empty handles and conversions.
#include <mime/KNMimeContentDisposition.h>
#include <mime/KNMimeContentType.h>
#include <mime/KNMimeError.h>
#include <mime/KNMimeMultipartRelatedType.h>
#include <mime/KNMimeMultipartType.h>
#include <mime/KNMimeTextType.h>

#include <foundation/KNTHRInvalidPointer.h>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <vector>

namespace {

// A content-type body that reports its destruction.
struct TrackedImp : KNMimeContentTypeImp {
    explicit TrackedImp(int& destroyed) : destroyed_(destroyed) {}
    ~TrackedImp() override { ++destroyed_; }
    int& destroyed_;
};

void expectInvalidPointer(const std::vector<std::function<void()>>& operations)
{
    for (std::size_t i = 0; i < operations.size(); ++i) {
        try {
            operations[i]();
            ADD_FAILURE() << "operation " << i << " did not throw";
        } catch (const KNTHRInvalidPointer& e) {
            EXPECT_EQ(e.why(), "Invalid pointer") << "operation " << i;
        }
    }
}

TEST(KNMimeHandleTest, AssignedHandlesShareTheBody)
{
    KNMimeContentType a("text", "plain", {});
    KNMimeContentType b;
    b = a;
    b.setParameterValue("x", "1");
    EXPECT_EQ(a.getParameterValue("x"), "1");
    EXPECT_TRUE(a.sharesBodyWith(b));
    EXPECT_EQ(a.body()->referenceCount(), 2u);

    KNMimeContentDisposition d("inline", "");
    const KNMimeContentDisposition e = d;
    d.setFilename("f");
    d.setType("attachment");
    EXPECT_EQ(e.asString(), "attachment; filename=\"f\"");
}

TEST(KNMimeHandleTest, CopiesAreEqualAndIndependent)
{
    KNMimeMultipartType a("mixed", "b");
    KNMimeContentType b;
    b = a.copy();
    EXPECT_FALSE(b.sharesBodyWith(a));
    EXPECT_EQ(a, b);
    EXPECT_EQ(b.body()->referenceCount(), 1u);
    b.setParameterValue("boundary", "c");
    EXPECT_NE(a, b);
    EXPECT_EQ(a.getBoundary(), "b");
    EXPECT_EQ(KNMimeMultipartType(b).getBoundary(), "c");

    KNMimeContentDisposition d("attachment", "f");
    KNMimeContentDisposition e = d.copy();
    EXPECT_EQ(d, e);
    e.setType("inline");
    e.fromString("inline; a=1");
    EXPECT_NE(d, e);
    EXPECT_EQ(d.asString(), "attachment; filename=\"f\"");
}

TEST(KNMimeHandleTest, SelfAssignmentKeepsTheBody)
{
    int destroyed = 0;
    {
        KNMimeContentType a(new TrackedImp(destroyed));
        KNMimeContentType& alias = a;
        a = alias;
        EXPECT_EQ(destroyed, 0);
        EXPECT_EQ(a.body()->referenceCount(), 1u);
        {
            const KNMimeContentType b = a;
            EXPECT_EQ(a.body()->referenceCount(), 2u);
        }
        EXPECT_EQ(a.body()->referenceCount(), 1u);
        EXPECT_EQ(destroyed, 0);
        // Rebinding the last handle deletes the body it held, exactly once.
        a = KNMimeContentType();
        EXPECT_EQ(destroyed, 1);
    }
    EXPECT_EQ(destroyed, 1);
    KNMimeContentDisposition d("inline", "");
    KNMimeContentDisposition& alias = d;
    d = alias;
    EXPECT_EQ(d.asString(), "inline");
}

TEST(KNMimeHandleTest, EveryOperationOnAnEmptyContentTypeThrows)
{
    KNMimeContentType empty(static_cast<KNMimeContentTypeImp*>(nullptr));
    const KNMimeContentType full("a", "b", {});
    EXPECT_TRUE(empty.isEmpty());
    KNMimeContentType copied = empty; // sharing nothing is allowed
    copied = empty;
    expectInvalidPointer({
        [&] { empty.body(); },
        [&] { empty.copy(); },
        [&] { empty.getMediaType(); },
        [&] { empty.getSubType(); },
        [&] { empty.fromString("a/b"); },
        [&] { empty.fromString("no separator"); },
        [&] { empty.asString(); },
        [&] { empty.getParameterCount(); },
        [&] { empty.getParameter(0); },
        [&] { empty.findParameter("a"); },
        [&] { empty.getParameterValue("a"); },
        [&] { empty.setParameterValue("a", "b"); },
        [&] { empty.insertParameter(KNMimeParameter("a", "b")); },
        [&] { empty.removeParameter(0); },
        [&] { empty.removeAllParameters(); },
        [&] { (void)(empty == full); },
        [&] { (void)(full != empty); },
        [&] { KNMimeTextType t(empty); },
        [&] { KNMimeMultipartType m(empty); },
        [&] { KNMimeMultipartRelatedType r(empty); },
        [&] { copied.asString(); },
    });
    EXPECT_TRUE(copied.isEmpty());
}

TEST(KNMimeHandleTest, EveryOperationOnEmptySpecialisedTypesThrows)
{
    KNMimeTextType text(static_cast<KNMimeContentTypeImp*>(nullptr));
    KNMimeMultipartRelatedType related(static_cast<KNMimeContentTypeImp*>(nullptr));
    expectInvalidPointer({
        [&] { text.getCharset(); },
        [&] { text.setCharset("x"); },
        [&] { related.getBoundary(); },
        [&] { related.setStartInfo("x"); },
        [&] { related.fromString("multipart/related"); },
    });
}

TEST(KNMimeHandleTest, EveryOperationOnAnEmptyDispositionThrows)
{
    KNMimeContentDisposition empty(nullptr);
    const KNMimeContentDisposition full("inline", "");
    expectInvalidPointer({
        [&] { empty.body(); },
        [&] { empty.copy(); },
        [&] { empty.getType(); },
        [&] { empty.setType("inline"); },
        [&] { empty.getFilename(); },
        [&] { empty.setFilename("x"); },
        [&] { empty.fromString("inline"); },
        [&] { empty.asString(); },
        [&] { empty.getParameterCount(); },
        [&] { empty.getParameter(0); },
        [&] { empty.findParameter("a"); },
        [&] { empty.getParameterValue("a"); },
        [&] { empty.setParameterValue("a", "b"); },
        [&] { empty.insertParameter(KNMimeParameter("a", "b")); },
        [&] { empty.removeParameter(0); },
        [&] { empty.removeAllParameters(); },
        [&] { (void)(empty == full); },
        [&] { (void)(full != empty); },
    });
}

TEST(KNMimeHandleTest, ConversionsShareTheBodyBothWays)
{
    KNMimeContentType general;
    general.fromString("multipart/related; boundary=x");
    KNMimeMultipartRelatedType related(general);
    KNMimeMultipartType multipart(related);
    const KNMimeContentType back = multipart;
    EXPECT_TRUE(related.sharesBodyWith(general));
    EXPECT_TRUE(multipart.sharesBodyWith(general));
    EXPECT_TRUE(back.sharesBodyWith(general));
    EXPECT_EQ(general.body()->referenceCount(), 4u);
    related.setStart("<s>");
    multipart.setBoundary("y");
    EXPECT_EQ(general.asString(), "multipart/related; start=\"<s>\"; boundary=\"y\"");
    // A refused conversion leaves the general handle's count as it was.
    EXPECT_THROW(KNMimeTextType t(general), KNMimeError);
    EXPECT_EQ(general.body()->referenceCount(), 4u);
}

TEST(KNMimeHandleTest, BodiesOfferTheParameterOperationsToo)
{
    KNMimeContentType type("a", "b", {});
    KNMimeContentTypeImp* body = type.body();
    body->insertParameter(KNMimeParameter("x", "1"));
    body->setParameterValue("y", "2");
    EXPECT_EQ(type.getParameterCount(), 2u);
    EXPECT_EQ(body->findParameter("Y"), 1u);
    body->removeParameter(0);
    EXPECT_EQ(body->asString(), "a/b; y=\"2\"");
    std::unique_ptr<KNMimeContentTypeImp> clone(body->copy());
    EXPECT_EQ(*clone, *body);
    clone->removeAllParameters();
    EXPECT_NE(*clone, *body);
    KNMimeContentDisposition disposition("inline", "f");
    disposition.body()->setParameterValue("size", "1");
    EXPECT_EQ(disposition.asString(), "inline; filename=\"f\"; size=\"1\"");
}

} // namespace
