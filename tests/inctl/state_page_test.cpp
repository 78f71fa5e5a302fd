// The table of a running host in terminals of several sizes.
#include "inctl/state_page.hpp"

#include <gmock/gmock.h>

namespace inctl {
namespace {

using testing::ElementsAre;

std::vector<std::string> texts( const std::vector<PageLine> &page )
{
    std::vector<std::string> texts;
    for ( const PageLine &line : page ) {
        texts.push_back( line.text.substr( 0, line.text.find_last_not_of( ' ' ) + 1 ) );
        EXPECT_LE( line.paintAt + line.paintLength, line.text.size() );
    }
    return texts;
}

const std::vector<ObjectState> twoObjects = {
    { .name = "sip", .sort = "IN_STACK", .state = "up", .good = true, .items = "inStackAddress=192.0.2.2" },
    { .name = "eth9", .sort = "IN_NW_STACK", .state = "down", .reason = "retry: next try in 400 ms: address not set" },
};

TEST( StatePageTest, FitsTheTerminal )
{
    EXPECT_THAT( texts( statesTable( twoObjects, 80 ) ),
                 ElementsAre( "OBJECT  SORT         STATE  DETAIL",
                              "sip     IN_STACK     up     inStackAddress=192.0.2.2",
                              "eth9    IN_NW_STACK  down   retry: next try in 400 ms: address not set" ) );
    // 28 columns before the detail, which is to have 24: one less, and the sort goes.
    EXPECT_THAT( texts( statesTable( twoObjects, 52 ) ),
                 ElementsAre( "OBJECT  SORT         STATE  DETAIL",
                              "sip     IN_STACK     up     inStackAddress=192.0.2.2",
                              "eth9    IN_NW_STACK  down   retry: next try in 400",
                              "                            ms: address not set" ) );
    EXPECT_THAT( texts( statesTable( twoObjects, 51 ) ),
                 ElementsAre( "OBJECT  STATE  DETAIL", "sip     up     inStackAddress=192.0.2.2",
                              "eth9    down   retry: next try in 400 ms: address",
                              "               not set" ) );
    EXPECT_THAT( texts( statesTable( twoObjects, 20 ) ),
                 ElementsAre( "OBJECT  STATE", "sip     up", "  inStackAddress=192", "  .0.2.2", "eth9    down",
                              "  retry: next try in", "  400 ms: address", "  not set" ) );
    for ( size_t columns = 0; columns < 60; ++columns )
        for ( size_t rows = 0; rows < 12; ++rows )
            EXPECT_LE( statePage( twoObjects, { "", { "F:1:1: error: what is wrong" } }, "careful", "", columns, rows )
                           .size(),
                       std::max<size_t>( rows, 1 ) )
                << columns << " x " << rows;
}

TEST( StatePageTest, ShowsWhatIsNotGoodAndTheRefusalFirst )
{
    EXPECT_THAT( texts( statePage( twoObjects, {}, "", "footer", 80, 5 ) ),
                 ElementsAre( "OBJECT  SORT         STATE  DETAIL", testing::StartsWith( "sip " ),
                              testing::StartsWith( "eth9 " ), "", "footer" ) );
    const RunBoard::Refusal refusal{ "now",
                                     { "F:1:1: error: one\033[2J", "F:2:1: error: two", "F:3:1: error: three" } };
    EXPECT_THAT( texts( statePage( twoObjects, refusal, "", "footer", 80, 8 ) ),
                 ElementsAre( testing::StartsWith( "OBJECT" ), testing::StartsWith( "sip " ),
                              testing::StartsWith( "eth9 " ), "", "The new file was refused; what ran before goes on:",
                              "F:1:1: error: one?[2J", "... and more" ) );
    EXPECT_THAT( texts( statePage( twoObjects, {}, "", "footer", 80, 4 ) ),
                 ElementsAre( testing::StartsWith( "OBJECT" ), "... of 2 objects", "", "footer" ) );
    EXPECT_THAT( texts( statePage( { twoObjects[0], twoObjects[0], twoObjects[1] }, {}, "", "footer", 80, 5 ) ),
                 ElementsAre( testing::StartsWith( "OBJECT" ), testing::StartsWith( "eth9 " ), "... of 3 objects", "",
                              "footer" ) );
}

TEST( StatePageTest, WarnsBesideTheFooterAndTheRefusal )
{
    for ( const RunBoard::Refusal &refusal : { RunBoard::Refusal{}, RunBoard::Refusal{ "now", { "F:1:1: error" } } } )
        EXPECT_THAT( texts( statePage( twoObjects, refusal, "unseen\033[2J", "footer", 80, 10 ) ),
                     testing::AllOf( testing::Contains( "unseen?[2J" ),
                                     testing::Contains( refusal.problems.empty() ? "footer" : "F:1:1: error" ) ) );
}

} // namespace
} // namespace inctl
