// Stores as JSON: text and back.
#include "cs/cs_json.h"

#include "cs/test_sort.hpp"

#include <gmock/gmock.h>

using test::Store;

namespace {

Store store( const std::string &json ) { return pb::adopt( csJsonTryToStore( pb::string( json ).get() ) ); }
std::string json( const Store &from, pbInt style = CS_JSON_SHORT )
{
    return pb::utf8( pb::adopt( csJsonFromStore( from.get(), style ) ) );
}

TEST( CsJson, PrintsWhatItReads )
{
    const char *const table[] = {
        "{}",
        R"({"a": 1, "b": -9007199254740991, "c": 9007199254740991, "d": true, "e": false, "f": ""})",
        // Text that a reader would take for another number, or that is none.
        R"({"a": "9007199254740992", "b": "-9007199254740992", "c": "007", "d": "-0", "e": "+1"})",
        R"({"f": "1.5", "g": "0x2e", "h": "-"})",
        R"(["a", ["b", {"c": 0}], {"1": "not from 0"}])",
        "{\"\\\"\\\\\\u001b\\u007f\\u009f\\u0000\": \"\xC3\xA9\xF0\x9F\x98\x80\"}",
    };
    for ( const char *text : table ) {
        SCOPED_TRACE( text );
        const Store read = store( text );
        ASSERT_TRUE( read );
        EXPECT_EQ( json( read ), text );
        EXPECT_TRUE( pbStoreEquals( store( json( read, CS_JSON_PRETTY ) ).get(), read.get() ) );
    }
    EXPECT_EQ( json( store( R"({"n": 1.50, "e": "\u00e9\/", /* none */ "a": {"0": "x"}})" ) ),
               "{\"n\": \"1.50\", \"e\": \"\xC3\xA9/\", \"a\": [\"x\"]}" );
    EXPECT_EQ( json( store( R"({"a": [1, {"b": {}}], "c": "d"})" ), CS_JSON_PRETTY ),
               "{\n  \"a\": [\n    1,\n    {\n      \"b\": {}\n    }\n  ],\n  \"c\": \"d\"\n}" );
    const pbChar surrogate = 0xD800;
    auto broken = pb::adopt( pbStoreCreate() );
    pbStoreSetValueCstr( broken.address(), "s", -1, pb::adopt( pbStringCreateFromChars( &surrogate, 1 ) ).get() );
    EXPECT_EQ( json( broken ), "{\"s\": \"\xEF\xBF\xBD\"}" );
}

TEST( CsJson, KeysDecideWhereTextCannot )
{
    const auto withKeys = []( const char *text ) {
        return pb::utf8( pb::adopt( csJsonFromStoreWithKeys( store( text ).get(), CS_JSON_SHORT, test::PhoneKeys,
                                                             PB_SIZEOF_ARRAY( test::PhoneKeys ) ) ) );
    };
    const std::pair<const char *, const char *> table[] = {
        { R"({"title": 5, "host": true, "tos": "7", "new": "5"})",
          R"({"title": "5", "host": "true", "tos": 7, "new": 5})" },
        { R"({"enabled": true, "timeout": true, "tos": "x"})", R"({"enabled": true, "timeout": "true", "tos": "x"})" },
        { R"({"range": {}, "names": {}})", R"({"range": {}, "names": []})" },
        { R"({"servers": [{"host": 1, "weight": 2}, {"host": 3}]})",
          R"({"servers": [{"host": "1", "weight": 2}, {"host": "3"}]})" },
        // What does not fit the table stays what it is.
        { R"({"names": {"a": "b"}, "range": ["c"]})", R"({"names": {"a": "b"}, "range": {"0": "c"}})" },
    };
    for ( const auto &[text, expected] : table )
        EXPECT_EQ( withKeys( text ), expected );
}

TEST( CsJson, RefusesWhatIsNoStore )
{
    for ( const char *text : { "", "1", "\"a\"", "null", "{\"a\": null}", "[1, [null]]", "{\"a\": 1, \"a\": 1}",
                               "{\"a\": 1} x", "{'a': 1}" } )
        EXPECT_FALSE( store( text ) ) << text;
    EXPECT_TRUE( store( std::string( 64, '[' ) + std::string( 64, ']' ) ) );
    EXPECT_FALSE( store( std::string( 65, '[' ) + std::string( 65, ']' ) ) );

    std::string many = "[0";
    for ( int i = 0; i < 100'000; ++i )
        many += ",0";
    EXPECT_FALSE( store( many + "]" ) );
    const Store whole = pb::adopt( csJsonTryToStoreWhole( pb::string( many + "]" ).get() ) );
    EXPECT_EQ( pbStoreArrayLength( whole.get() ), 100'001 );
    EXPECT_FALSE( pb::adopt( csJsonTryToStoreWhole( pb::string( many ).get() ) ) );
}

} // namespace
