// Tables of tests that are kept as text beside them: after what it is about, "==== remark" begins a row, "----" its
// next part.
#ifndef TESTS_CS_TABLES_HPP
#define TESTS_CS_TABLES_HPP

#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

namespace test {

inline std::vector<std::string> linesOf( const std::string &text )
{
    std::vector<std::string> lines;
    std::istringstream stream( text );
    for ( std::string line; std::getline( stream, line ); )
        lines.push_back( line );
    return lines;
}

// The parts of each row, the remark first; parts without their last line end.
inline std::vector<std::vector<std::string>> rowsOf( const std::string &name )
{
    std::ifstream file( CS_TEST_DIRECTORY "/" + name );
    std::vector<std::vector<std::string>> rows;
    bool first = true; // line of its part
    for ( std::string line; std::getline( file, line ); ) {
        const bool row = line.starts_with( "====" );
        if ( row )
            rows.push_back( { line } );
        if ( rows.empty() )
            continue; // what the table is about
        if ( row || line == "----" )
            rows.back().emplace_back();
        else
            rows.back().back() += ( first ? "" : "\n" ) + line;
        first = row || line == "----";
    }
    EXPECT_FALSE( rows.empty() ) << name;
    return rows;
}

} // namespace test

#endif
