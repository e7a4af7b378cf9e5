#include "OvMemCppBinding/util/ConversionReport.h"

#include <memory>

#include <gtest/gtest.h>

namespace {

using Orvane::Net::OvModelEventManager::Util::composeConversionReport;

class ConversionReport : public testing::Test {
protected:
    static std::string report(const char* converter, UErrorCode error,
                              bool toUnicode) {
        struct Close {
            void operator()(UConverter* open) const { ucnv_close(open); }
        };
        UErrorCode opening = U_ZERO_ERROR;
        const std::unique_ptr<UConverter, Close> open(
            ucnv_open(converter, &opening));
        EXPECT_TRUE(U_SUCCESS(opening)) << u_errorName(opening);
        return composeConversionReport(open.get(), error, toUnicode);
    }
};

TEST_F(ConversionReport, NamesTheConverterWithItsAliasesToUnicode) {
    EXPECT_EQ(report("SCSU", U_TRUNCATED_CHAR_FOUND, true),
              "An error occured converting SCSU (SCSU, ibm-1212, ibm-1213)"
              " to Unicode.\n"
              "U_TRUNCATED_CHAR_FOUND\n");
}

TEST_F(ConversionReport, NamesTheConverterWithItsAliasesFromUnicode) {
    EXPECT_EQ(report("SCSU", U_INVALID_CHAR_FOUND, false),
              "An error occured converting Unicode to"
              " SCSU (SCSU, ibm-1212, ibm-1213).\n"
              "U_INVALID_CHAR_FOUND\n");
}

TEST_F(ConversionReport, NamesAConverterWithoutFurtherAliases) {
    EXPECT_EQ(report("IMAP-mailbox-name", U_BUFFER_OVERFLOW_ERROR, true),
              "An error occured converting"
              " IMAP-mailbox-name (IMAP-mailbox-name) to Unicode.\n"
              "U_BUFFER_OVERFLOW_ERROR\n");
}

TEST_F(ConversionReport, UsesTheConvertersOwnNameNotTheOneItWasOpenedBy) {
    EXPECT_EQ(report("ibm-1212", U_ILLEGAL_CHAR_FOUND, true),
              "An error occured converting SCSU (SCSU, ibm-1212, ibm-1213)"
              " to Unicode.\n"
              "U_ILLEGAL_CHAR_FOUND\n");
}

TEST_F(ConversionReport, IsEmptyForASuccessAndForAWarning) {
    for (const bool toUnicode : {true, false}) {
        EXPECT_EQ(report("SCSU", U_ZERO_ERROR, toUnicode), "");
        EXPECT_EQ(report("SCSU", U_AMBIGUOUS_ALIAS_WARNING, toUnicode), "");
        EXPECT_EQ(report("SCSU", U_USING_DEFAULT_WARNING, toUnicode), "");
    }
}

}  // namespace
