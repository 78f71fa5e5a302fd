// A table of precondition violations: each row's call ends the process with exactly the row's text.
#ifndef SUPPORT_DEATH_TABLE_HPP
#define SUPPORT_DEATH_TABLE_HPP

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace support {

struct Death {
    std::function<void()> call;
    std::string text; // behind "FILE:LINE: "
};

inline void expectDeaths( const std::vector<Death> &table )
{
    for ( const Death &death : table ) {
        SCOPED_TRACE( death.text );
        EXPECT_DEATH( death.call(), testing::HasSubstr( ": " + death.text + "\n" ) );
    }
}

} // namespace support

#endif
