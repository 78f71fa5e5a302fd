// Labels and names: what is one, its ASCII and its Unicode form, equality.
#include "in/dns/in_dns_idna.h"

#include "in/dns/in_dns_idna_internal.h"
#include "pb/pb_string.hpp"
#include "support/death_table.hpp"

namespace {

using Convert = struct pbString *( const struct pbString * );

std::string convert( Convert *convert, const pb::String &source )
{
    return pb::utf8( pb::adopt( convert( source.get() ) ) );
}

const std::string longest( 63, 'a' ), tooLong( 64, 'a' );
const std::string softHyphen = "\xC2\xAD";

std::string times( int count, const std::string &text )
{
    std::string result;
    while ( count-- > 0 )
        result += text;
    return result;
}

TEST( Idna, Labels )
{
    const struct {
        std::string label, ascii, unicode; // ascii empty: no label
    } rows[] = {
        { "Example", "Example", "Example" },
        { "_a b", "_a b", "_a b" },
        { longest, longest, longest },
        { tooLong, "", "" },
        { "", "", "" },
        { softHyphen, "", "" },                                 // empty once prepared
        { "Bücher", "xn--bcher-kva", "Bücher" },                // a Unicode label is not prepared
        { "STRASSE-ß", "strasse-ss", "STRASSE-ß" },
        { "ａ", "a", "ａ" },
        { "a\u2024b", "a.b", "a\u2024b" },                       // ONE DOT LEADER
        { "xn--bcher-kva", "xn--bcher-kva", "bücher" },
        { "XN--BCHER-KVA", "XN--BCHER-KVA", "BüCHER" },          // case of the ASCII part is the label's
        { "ｘn--bcher-kva", "xn--bcher-kva", "bücher" },         // fullwidth x
        { "xn--bcher-2pa", "xn--bcher-2pa", "xn--bcher-2pa" },   // a capital U+00DC, which ToASCII would make small
        { "xn--abc", "xn--abc", "xn--abc" },
        { "xn--abc-", "xn--abc-", "xn--abc-" },                  // decodes to ASCII
        { "xn--", "xn--", "xn--" },
        { "xn---", "xn---", "xn---" },
        { "xn--99999999", "xn--99999999", "xn--99999999" },      // beyond Unicode
        { "xn--ib9b", "xn--ib9b", "xn--ib9b" },                  // a surrogate
        { "xn--a-ba", "xn--a-ba", "xn--a-ba" },               // U+0080
        { "xn--xn---epa", "xn--xn---epa", "xn--xn---epa" },      // "xn--é" inside
        { "XN--ü", "", "" },
        { "\u05D0a", "", "" },                                   // mixed directions
        { "\uE000", "", "" },
        { times( 56, "a" ) + "é", "", "" },                      // 56, "-" and three digits
        { times( 58, "é" ), "", "" },
        { times( 55, "a" ) + "é", "xn--" + times( 55, "a" ) + "-u3e", times( 55, "a" ) + "é" },
        { times( 57, "é" ), "xn--9ca" + times( 56, "a" ), times( 57, "é" ) },
        { times( 100, softHyphen ) + "ü", "xn--tda", times( 100, softHyphen ) + "ü" },
        { times( 253, "ﬁ" ), "", "" },
        { times( 31, "ﬁ" ), times( 31, "fi" ), times( 31, "ﬁ" ) },
        { times( 32, "ﬁ" ), "", "" },
    };
    for ( const auto &row : rows ) {
        SCOPED_TRACE( row.label );
        const pb::String label = pb::string( row.label );
        ASSERT_EQ( inDnsIdnaLabelOk( label.get() ), !row.ascii.empty() );
        if ( row.ascii.empty() )
            continue;
        EXPECT_EQ( convert( inDnsIdnaLabelToAscii, label ), row.ascii );
        EXPECT_EQ( convert( inDnsIdnaLabelToUnicode, label ), row.unicode );
    }
}

TEST( Idna, Names )
{
    const struct {
        std::string name, ascii, unicode; // ascii empty: no name
    } rows[] = {
        { "www.Example.org", "www.Example.org", "www.Example.org" },
        { "a.b.", "a.b", "a.b" },
        { "a", "a", "a" },
        { "Bücher。example．org｡", "xn--bcher-kva.example.org", "Bücher.example.org" },
        { "xn--bcher-kva.XN--BCHER-KVA", "xn--bcher-kva.XN--BCHER-KVA", "bücher.BüCHER" },
        { "a\u2024b.c", "a.b.c", "a\u2024b.c" },
        { "", "", "" },
        { ".", "", "" },
        { ".a", "", "" },
        { "a..b", "", "" },
        { "a..", "", "" },
        { "a.。b", "", "" },
        { longest + "." + longest + "." + longest + "." + longest + "." + longest,
          longest + "." + longest + "." + longest + "." + longest + "." + longest,
          longest + "." + longest + "." + longest + "." + longest + "." + longest },
        { "a." + tooLong, "", "" },
        { tooLong + ".a", "", "" },
        { "a.XN--ü", "", "" },
    };
    for ( const auto &row : rows ) {
        SCOPED_TRACE( row.name );
        const pb::String name = pb::string( row.name );
        ASSERT_EQ( inDnsIdnaDomainNameOk( name.get() ), !row.ascii.empty() );
        if ( row.ascii.empty() )
            continue;
        EXPECT_EQ( convert( inDnsIdnaDomainNameToAscii, name ), row.ascii );
        EXPECT_EQ( convert( inDnsIdnaDomainNameToUnicode, name ), row.unicode );
        EXPECT_EQ( pb::adopt( inDnsIdnaDomainNameToAscii( name.get() ) ).is( name ), row.name == row.ascii );
    }
}

TEST( Idna, EqualNames )
{
    const struct {
        const char *a, *b;
        bool equal;
    } rows[] = {
        { "Example.org.", "eXAMPLE.org", true },   { "xn--bcher-kva.de", "BÜCHER。de", true },
        { "XN--BCHER-KVA", "bücher", true },       { "faß.de", "FASS.de", true },
        { "ａ", "a", false },                      { "a.b", "a.bc", false },
        { "xn--abc", "XN--ABC", true },            { "a.b", "a-b", false },
        { "a.b.c", "a.b", false },                 { "ab", "a.b", false },
    };
    for ( const auto &[a, b, equal] : rows ) {
        EXPECT_EQ( inDnsIdnaDomainNameEquals( pb::string( a ).get(), pb::string( b ).get() ), equal ) << a << " " << b;
        EXPECT_EQ( inDnsIdnaDomainNameEquals( pb::string( b ).get(), pb::string( a ).get() ), equal ) << b << " " << a;
    }
}

TEST( Idna, StricterRules )
{
    const struct {
        const char *label;
        bool allowUnassigned, useStd3AsciiRules, ok;
    } rows[] = {
        { "a-b", false, true, true }, { "-a", false, true, false }, { "a-", false, true, false }, { "a_b", false, true, false },
        { "", false, true, false },   { "ü", false, true, false },  { "ａ", false, true, true },  { "\u0221", true, false, true },
        { "\u0221", false, false, false },
    };
    for ( const auto &[label, allowUnassigned, useStd3AsciiRules, ok] : rows ) {
        const auto ascii = pb::adopt( in___DnsIdnaLabelTryToAscii( pb::string( label ).get(), allowUnassigned, useStd3AsciiRules ) );
        EXPECT_EQ( bool( ascii ), ok ) << label;
    }
    const pb::String ace = pb::string( "xn--bcher-kva" );
    EXPECT_EQ( pb::utf8( pb::adopt( in___DnsIdnaLabelToUnicode( ace.get(), true, false ) ) ), "bücher" );
    EXPECT_EQ( pb::utf8( pb::adopt( in___DnsIdnaLabelToUnicode( ace.get(), true, true ) ) ), "xn--bcher-kva" );
}

TEST( IdnaDeathTest, Preconditions )
{
    const pb::String bad = pb::string( "a..b" ), good = pb::string( "a" ), longLabel = pb::string( tooLong );
    support::expectDeaths( {
        { [] { inDnsIdnaLabelOk( nullptr ); }, "label" },
        { [] { inDnsIdnaLabelToAscii( nullptr ); }, "idnLabel" },
        { [&] { inDnsIdnaLabelToAscii( longLabel.get() ); }, "inDnsIdnaLabelOk( idnLabel )" },
        { [] { inDnsIdnaLabelToUnicode( nullptr ); }, "adnLabel" },
        { [&] { inDnsIdnaLabelToUnicode( longLabel.get() ); }, "inDnsIdnaLabelOk( adnLabel )" },
        { [&] { in___DnsIdnaLabelToUnicode( longLabel.get(), 1, 0 ); },
          "in___DnsIdnaLabelOk( adnLabel, allowUnassigned, useStd3AsciiRules )" },
        { [] { inDnsIdnaDomainNameOk( nullptr ); }, "name" },
        { [&] { inDnsIdnaDomainNameToAscii( bad.get() ); }, "sv" },
        { [&] { inDnsIdnaDomainNameToUnicode( bad.get() ); }, "sv" },
        { [&] { inDnsIdnaDomainNameEquals( good.get(), bad.get() ); }, "sv" },
        { [&] { inDnsIdnaDomainNameEquals( bad.get(), good.get() ); }, "sv" },
    } );
}

} // namespace
