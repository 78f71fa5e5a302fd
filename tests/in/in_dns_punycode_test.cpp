// Punycode: the published samples, limits of length, and what is no punycode.
#include "in/dns/in_dns_punycode.h"

#include "pb/pb_string.hpp"
#include "support/death_table.hpp"

namespace {

using Convert = struct pbString *( const struct pbString *, pbInt );

std::string convert( Convert *convert, const pb::String &source, pbInt most = -1 )
{
    return pb::utf8( pb::adopt( convert( source.get(), most ) ) );
}

TEST( Punycode, PublishedSamples ) // RFC 3492, section 7.1
{
    const std::pair<const char *, const char *> samples[] = {
        { "ليهمابتكلموشعربي؟", "egbpdaj6bu4bxfgehfvwxn" },
        { "他们为什么不说中文", "ihqwcrb4cv8a8dqg056pqjye" },
        { "他們爲什麽不說中文", "ihqwctvzc91f659drss3x8bo0yb" },
        { "Pročprostěnemluvíčesky", "Proprostnemluvesky-uyb24dma41a" },
        { "למההםפשוטלאמדבריםעברית", "4dbcagdahymbxekheh6e0a7fei0b" },
        { "यहलोगहिन्दीक्योंनहींबोलसकतेहैं", "i1baa7eci9glrd9b2ae1bj0hfcgg6iyaf8o0a1dig0cd" },
        { "なぜみんな日本語を話してくれないのか", "n8jok5ay5dzabd5bym9f0cm5685rrjetr6pdxa" },
        { "세계의모든사람들이한국어를이해한다면얼마나좋을까", "989aomsvi5e83db1d2a355cv1e0vak1dwrv93d5xbh15a0dt30a5jpsd879ccm6fea98c" },
        { "почемужеонинеговорятпорусски", "b1abfaaepdrnnbgefbadotcwatmq2g4l" },
        { "PorquénopuedensimplementehablarenEspañol", "PorqunopuedensimplementehablarenEspaol-fmd56a" },
        { "TạisaohọkhôngthểchỉnóitiếngViệt", "TisaohkhngthchnitingVit-kjcr8268qyxafd2f1b9g" },
        { "3年B組金八先生", "3B-ww4c5e180e575a65lsy2b" },
        { "安室奈美恵-with-SUPER-MONKEYS", "-with-SUPER-MONKEYS-pc58ag80a8qai00g7n9n" },
        { "Hello-Another-Way-それぞれの場所", "Hello-Another-Way--fc4qua05auwb3674vfr0b" },
        { "ひとつ屋根の下2", "2-u9tlzr9756bt3uc0v" },
        { "MajiでKoiする5秒前", "MajiKoi5-783gue6qz075azm5e" },
        { "パフィーdeルンバ", "de-jg4avhby1noc0d" },
        { "そのスピードで", "d9juau41awczczp" },
        { "-> $1.00 <-", "-> $1.00 <--" },
        { "", "" },
        { "-", "--" },
        { "\uD7FF", "hb9b" },
        { "\uE000", "0y0c" },
        { "\U0010FFFF", "dn32g" },
    };
    for ( const auto &[text, encoded] : samples ) {
        const pb::String source = pb::string( text ), target = pb::string( encoded );
        const pbInt sourceLength = pbStringLength( source.get() ), targetLength = pbStringLength( target.get() );
        EXPECT_EQ( convert( inDnsPunycodeTryEncode, source, targetLength ), encoded );
        EXPECT_EQ( convert( inDnsPunycodeTryDecode, target, sourceLength ), text );
        for ( pbInt most = 0; most < targetLength; ++most )
            EXPECT_EQ( convert( inDnsPunycodeTryEncode, source, most ), "null" ) << encoded << " in " << most;
        for ( pbInt most = 0; most < sourceLength; ++most )
            EXPECT_EQ( convert( inDnsPunycodeTryDecode, target, most ), "null" ) << encoded << " in " << most;
    }
    EXPECT_EQ( convert( inDnsPunycodeTryDecode, pb::string( "2-U9TLZR9756BT3UC0V" ) ), "ひとつ屋根の下2" );
}

TEST( Punycode, Refusals )
{
    const pbChar beyond[] = { 'a', 0x110000 }, surrogate[] = { 0xD800 };
    EXPECT_EQ( convert( inDnsPunycodeTryEncode, pb::adopt( pbStringCreateFromChars( beyond, 2 ) ) ), "null" );
    EXPECT_EQ( convert( inDnsPunycodeTryEncode, pb::adopt( pbStringCreateFromChars( surrogate, 1 ) ) ), "null" );
    for ( const char *refused : { "-", "-abc",                 // the only delimiter comes first
                                  "\xC3\xBC-abc", "abc-\xC3\xBC", // not ASCII
                                  "abc-@", "abc-[", "abc-`", "abc-{", "abc-/", "abc-:", "ab c", // beside the digits
                                  "9", "b-99",                // ends inside an integer
                                  "en32g",                    // U+110000
                                  "ib9b", "zy0c",             // U+D800 and U+DFFF
                                  "99999999", "sy902716a",     // beyond 21 bits, and U+0041 if cut to 32
                                  "hz767205604493046e", "iz767205604493046e" } ) // 2^63 - 1 and 2^63
        EXPECT_EQ( convert( inDnsPunycodeTryDecode, pb::string( refused ) ), "null" ) << refused;
}

TEST( PunycodeDeathTest, Preconditions )
{
    const pb::String text = pb::string( "a" );
    support::expectDeaths( { { [] { inDnsPunycodeTryEncode( nullptr, -1 ); }, "source" },
                             { [&] { inDnsPunycodeTryEncode( text.get(), -2 ); }, "maxResultLength >= -1" },
                             { [] { inDnsPunycodeTryDecode( nullptr, -1 ); }, "source" },
                             { [&] { inDnsPunycodeTryDecode( text.get(), -2 ); }, "maxResultLength >= -1" } } );
}

} // namespace
