// SPDX-License-Identifier: MIT
#include "ula/foundation/Exception.h"

#include "ula/foundation/thread/ThreadInterruptedException.h"
#include "ula/foundation/xml/XmlException.h"

#include <gtest/gtest.h>
#include <memory>
#include <stdexcept>

namespace tav {
namespace {

class Broken : public CloneableException<Broken> {
public:
    using CloneableException::CloneableException;
};

template <class Concrete>
void expectKeepsItsType(const Exception& original) {
    const std::unique_ptr<Exception> clone(original.clone());
    EXPECT_NE(clone.get(), &original);
    EXPECT_STREQ(clone->what(), original.what());
    EXPECT_THROW(clone->raise(), Concrete);
}

TEST(ExceptionTest, CarriesItsMessageOrNone) {
    EXPECT_STREQ(Exception("why").what(), "why");
    EXPECT_STREQ(Exception().what(), "");
    const Exception original("why");
    EXPECT_STREQ(Exception(original).what(), "why");
}

TEST(ExceptionTest, ClonesAndRaisedCopiesKeepTheDynamicType) {
    expectKeepsItsType<Exception>(Exception("why"));
    expectKeepsItsType<Broken>(Broken("why"));
    expectKeepsItsType<xml::XmlException>(xml::XmlException("why"));
    expectKeepsItsType<thread::ThreadInterruptedException>(thread::ThreadInterruptedException());
}

TEST(ExceptionTest, ARaisedExceptionIsCaughtAsItsBase) {
    try {
        Broken("why").raise();
    } catch (const Exception& caught) {
        EXPECT_STREQ(caught.what(), "why");
        EXPECT_NE(dynamic_cast<const Broken*>(&caught), nullptr);
    }
}

std::string described(const auto& thrown) {
    try {
        throw thrown;
    } catch (...) {
        return describeCurrentException();
    }
}

TEST(ExceptionTest, WhatIsBeingHandledIsDescribedWhateverItsType) {
    EXPECT_EQ(described(Broken("why")), "why");
    EXPECT_EQ(described(std::runtime_error("reason")), "reason");
    EXPECT_EQ(described(7), "of unknown type");
}

}  // namespace
}  // namespace tav
