// Decoding DNS messages: what comes out of valid ones, which hostile ones are refused, what the worst ones cost.
#include "in/base/in_address.h"
#include "in/dns/in_dns_data_in_srv.h"
#include "in/dns/in_dns_data_mx.h"
#include "in/dns/in_dns_data_soa.h"
#include "in/dns/in_dns_data_txt.h"
#include "in/dns/in_dns_idna.h"
#include "in/dns/in_dns_message.h"
#include "in/dns/in_dns_message_decode.h"
#include "in/dns/in_dns_query_srv_imp_internal.h"
#include "in/dns/in_dns_question_record.h"
#include "in/dns/in_dns_resource_record.h"
#include "in/imp/in_imp_dns_unix_internal.h"
#include "pb/pb_buffer.h"
#include "pb/pb_string.hpp"
#include "support/dns_worst.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <malloc.h>
#include <new>

// What the tests of cost count: memory in use, its highest, and how often some was asked for.
namespace {

size_t inUse, mostInUse, allocations, allocated; // allocated: all bytes ever

} // namespace

void *operator new( size_t size )
{
    void *memory = std::malloc( size );
    if ( !memory )
        throw std::bad_alloc();
    inUse += malloc_usable_size( memory );
    allocated += size;
    mostInUse = std::max( mostInUse, inUse );
    ++allocations;
    return memory;
}
void operator delete( void *memory ) noexcept
{
    inUse -= memory ? malloc_usable_size( memory ) : 0;
    std::free( memory );
}
void operator delete( void *memory, size_t ) noexcept
{
    operator delete( memory );
}

namespace {

using namespace support;
using Message = pb::Ref<struct inDnsMessage>;

Message decode( std::string_view bytes )
{
    const auto buffer = pb::adopt( pbBufferCreateFromBytes( bytes.data(), static_cast<pbInt>( bytes.size() ) ) );
    return pb::adopt( inDnsMessageTryDecode( buffer.get() ) );
}

std::string text( struct pbString *string )
{
    return pb::utf8( pb::adopt( string ) );
}

// Null for the root.
pb::String questionName( const Message &msg, pbInt index )
{
    return pb::adopt( inDnsQuestionRecordName( pb::adopt( inDnsMessageQuestionRecordAt( msg.get(), index ) ).get() ) );
}

TEST( InDnsMessageDecode, ReadsTheHeader )
{
    struct {
        unsigned flags;
        std::vector<pbInt> expected; // query, operation, AA, TC, RD, RA, response
    } const rows[] = { { 0x8180, { 0, 0, 0, 0, 1, 1, 0 } },  { 0x0000, { 1, 0, 0, 0, 0, 0, 0 } },
                       { 0x7800, { 1, 15, 0, 0, 0, 0, 0 } }, { 0x0800, { 1, 1, 0, 0, 0, 0, 0 } },
                       { 0x0400, { 1, 0, 1, 0, 0, 0, 0 } },  { 0x0200, { 1, 0, 0, 1, 0, 0, 0 } },
                       { 0x0070, { 1, 0, 0, 0, 0, 0, 0 } },  { 0x800F, { 0, 0, 0, 0, 0, 0, 15 } },
                       { 0x8003, { 0, 0, 0, 0, 0, 0, 3 } } };
    for ( const auto &row : rows ) {
        const Message msg = decode( DnsWire( row.flags, 0xFEDC ).bytes + "left over" );
        ASSERT_TRUE( msg ) << std::hex << row.flags;
        const std::vector<pbInt> header = { inDnsMessageIsQuery( msg.get() ),
                                            inDnsMessageOperation( msg.get() ),
                                            inDnsMessageAuthoritativeAnswer( msg.get() ),
                                            inDnsMessageTruncation( msg.get() ),
                                            inDnsMessageRecursionDesired( msg.get() ),
                                            inDnsMessageRecursionAvailable( msg.get() ),
                                            inDnsMessageResponse( msg.get() ) };
        EXPECT_EQ( header, row.expected ) << std::hex << row.flags;
        EXPECT_EQ( inDnsMessageId( msg.get() ), 0xFEDC );
    }
    EXPECT_FALSE( decode( DnsWire().bytes.substr( 0, 11 ) ) );
}

std::string dataText( const struct inDnsResourceRecord *rr )
{
    std::string result;
    for ( const auto slot : { inDnsResourceRecordInA, inDnsResourceRecordInAaaa } )
        if ( const auto ina = pb::adopt( slot( rr ) ) )
            result += text( inAddressToString( ina.get() ) );
    for ( const auto slot : { inDnsResourceRecordCname, inDnsResourceRecordNs, inDnsResourceRecordPtr } )
        if ( const auto name = pb::adopt( slot( rr ) ) )
            result += pb::utf8( name );
    if ( const auto srv = pb::adopt( inDnsResourceRecordInSrv( rr ) ) )
        result += text( inDnsDataInSrvToString( srv.get() ) );
    if ( const auto mx = pb::adopt( inDnsResourceRecordMx( rr ) ) )
        result += std::to_string( inDnsDataMxPreference( mx.get() ) ) + " " + text( inDnsDataMxExchange( mx.get() ) );
    if ( const auto soa = pb::adopt( inDnsResourceRecordSoa( rr ) ) ) {
        result += text( inDnsDataSoaMname( soa.get() ) ) + " " + text( inDnsDataSoaRname( soa.get() ) );
        for ( const auto field :
              { inDnsDataSoaSerial, inDnsDataSoaRefresh, inDnsDataSoaRetry, inDnsDataSoaExpire, inDnsDataSoaMinimum } )
            result += " " + std::to_string( field( soa.get() ) );
    }
    const auto txt = pb::adopt( inDnsResourceRecordTxt( rr ) );
    for ( pbInt i = 0; txt && i < inDnsDataTxtBuffersLength( txt.get() ); ++i ) {
        const auto buffer = pb::adopt( inDnsDataTxtBufferAt( txt.get(), i ) );
        const auto *bytes = reinterpret_cast<const char *>( pbBufferBacking( buffer.get() ) );
        result += "<" + std::string( bytes, static_cast<size_t>( pbBufferLength( buffer.get() ) ) ) + ">";
    }
    return result;
}

const std::string root( 1, '\0' ), pointer = dnsPointer( 12 );

std::string soaNumbers( uint64_t serial, uint64_t refresh, uint64_t retry, uint64_t expire, uint64_t minimum )
{
    return dns32( serial ) + dns32( refresh ) + dns32( retry ) + dns32( expire ) + dns32( minimum );
}

// One record behind a question for "a.example" at offset 12: its data in wire format, and as text, null when refused.
TEST( InDnsMessageDecode, ReadsTheDataOfEachType )
{
    const std::string b = dnsLabels( "b" ) + pointer, v4 = "\1\2\3\xC0", v6( 16, '\1' ), zeros( 7, '\0' );
    constexpr uint64_t high = 0x80000000, most = 0x7FFFFFFF;
    struct {
        unsigned type;
        std::string data;
        const char *expected;
        unsigned cls = 1;
        uint64_t ttl = most;
    } const rows[] = {
        { 1, v4, "1.2.3.192" }, { 1, v4 + "\5", nullptr }, { 1, v4.substr( 1 ), nullptr }, { 1, v4, nullptr, 3 },
        { 1, v4, nullptr, 1, high }, { 28, v6, "101:101:101:101:101:101:101:101" }, { 28, v6 + "\1", nullptr },
        { 28, v6, nullptr, 3 }, { 2, b, "b.a.example", 3 }, { 2, root, nullptr }, { 5, pointer, "a.example" },
        { 5, root, nullptr }, { 5, b + root, nullptr }, { 12, b, "b.a.example" }, { 12, root, nullptr },
        { 15, dns16( 65535 ) + b, "65535 b.a.example" }, { 15, dns16( 1 ) + root, nullptr }, { 15, root, nullptr },
        { 6, b + pointer + soaNumbers( high, most, 2, 3, 4 ), "b.a.example a.example -2147483648 2147483647 2 3 4" },
        { 6, b + b + soaNumbers( 1, high, 2, 3, 4 ), nullptr }, { 6, b + b + soaNumbers( 1, 2, high, 3, 4 ), nullptr },
        { 6, b + b + soaNumbers( 1, 2, 3, high, 4 ), nullptr }, { 6, b + b + soaNumbers( 1, 2, 3, 4, high ), nullptr },
        { 6, root + b + soaNumbers( 1, 2, 3, 4, 5 ), nullptr }, { 6, b + root + soaNumbers( 1, 2, 3, 4, 5 ), nullptr },
        { 6, b + b + soaNumbers( 1, 2, 3, 4, 5 ).substr( 1 ), nullptr }, { 16, "", "" }, { 16, "\5hello", "<hello>" },
        { 16, "\6hello", nullptr }, { 16, "\5hello\1x" + root, "<hello><x><>" },
        { 33, dns16( 1 ) + dns16( 2 ) + dns16( 3 ) + b, "1 2 3 b.a.example" }, { 33, zeros, "0 0 0 null" },
        { 33, zeros, nullptr, 2 }, { 33, zeros.substr( 1 ), nullptr }, { 33, zeros.substr( 2 ), nullptr },
        { 99, "1234567", "", 65535 }, { 41, "", "", 4096 }, { 41, "", nullptr, 4096, high },
    };
    for ( const auto &row : rows ) {
        SCOPED_TRACE( std::to_string( row.type ) + " " + ( row.expected ? row.expected : "refused" ) );
        DnsWire wire;
        wire.question( dnsName( "a.example" ), 1 );
        wire.answer( pointer, row.type, row.data, row.cls, row.ttl );
        wire.record( DnsSection::additional, pointer, 1, "\1\1\1\1" ); // what follows is found
        const Message msg = decode( wire.bytes );
        ASSERT_EQ( static_cast<bool>( msg ), row.expected != nullptr );
        if ( !msg )
            continue;
        for ( size_t length = 0; length < wire.bytes.size(); ++length )
            ASSERT_FALSE( decode( std::string_view( wire.bytes ).substr( 0, length ) ) ) << length;
        const auto rr = pb::adopt( inDnsMessageAnswerResourceRecordAt( msg.get(), 0 ) );
        EXPECT_EQ( dataText( rr.get() ), row.expected );
        EXPECT_EQ( inDnsResourceRecordType( rr.get() ), row.type == 2 || row.type == 12 ? 5 : row.type );
        EXPECT_EQ( inDnsResourceRecordClass( rr.get() ), row.cls );
        EXPECT_EQ( inDnsResourceRecordTtl( rr.get() ), most );
        const auto next = pb::adopt( inDnsMessageAdditionalResourceRecordAt( msg.get(), 0 ) );
        EXPECT_EQ( text( inDnsResourceRecordName( next.get() ) ) + " " + dataText( next.get() ), "a.example 1.1.1.1" );
    }
}

// Names of questions one after the other; the first is at offset 12 and each is followed by 4 bytes. Null when refused.
TEST( InDnsMessageDecode, ReadsNames )
{
    const std::string ab = dnsName( "a.b" ), x = dnsLabels( "x" ), longest = std::string( 63, 'y' ) + " ";
    const auto label = []( std::string_view bytes ) {
        return static_cast<char>( bytes.size() ) + std::string( bytes );
    };
    struct {
        const char *what;
        std::vector<std::string> wire;
        const char *expected; // names with a blank behind each
    } const rows[] = {
        { "root", { root }, "null " }, { "pointer to a name", { ab, pointer }, "a.b a.b " },
        { "pointer to a suffix", { ab, x + dnsPointer( 14 ) }, "a.b x.b " },
        { "pointer to the end of a name", { ab, x + dnsPointer( 16 ) }, "a.b x " },
        { "pointer to a pointer", { ab, x + pointer, dnsPointer( 23 ), dnsPointer( 29 ) }, "a.b x.a.b a.b a.b " },
        { "pointer to the root", { root, pointer, dnsPointer( 17 ) }, "null null null " },
        { "pointer to itself", { pointer }, nullptr }, { "pointer to the name in progress", { x + pointer }, nullptr },
        { "pointer to what follows", { dnsPointer( 18 ), ab }, nullptr },
        { "pointer to the header", { ab, dnsPointer( 0 ) }, nullptr },
        { "pointer into a label", { ab, dnsPointer( 13 ) }, nullptr },
        { "pointer to type and class", { ab, dnsPointer( 17 ) }, nullptr },
        { "pointer beyond the message", { ab, dnsPointer( 0x3FFF ) }, nullptr },
        { "reserved 01", { std::string( 1, '\x40' ) + ab }, nullptr },
        { "reserved 10", { std::string( 1, '\xBF' ) + ab }, nullptr },
        { "longest label", { label( std::string( 63, 'y' ) ) + root }, longest.c_str() },
        { "ASCII form", { label( "XN--bcher-kva" ) + ab }, "b\u00FCcher.a.b " },
        { "UTF-8", { label( "b\u00FCcher" ) + ab, pointer }, "b\u00FCcher.a.b b\u00FCcher.a.b " },
        { "case is kept", { label( "ExAmPlE" ) + ab }, "ExAmPlE.a.b " },
        { "ASCII form of nothing", { label( "xn--99999999" ) + ab }, "xn--99999999.a.b " },
        { "not UTF-8", { label( "\xFF" ) + ab }, nullptr }, { "cut UTF-8", { label( "abcdefgh\xC3" ) + ab }, nullptr },
        { "a private code point", { label( "\uE000" ) + ab }, nullptr },
        { "a full stop alone", { label( "." ) + ab }, nullptr },
        { "a full stop alone, last", { x + label( "." ) + root }, nullptr },
        { "a full stop inside", { label( "a.b" ) + ab }, "a.b.a.b " },
        { "two full stops inside", { label( "a..b" ) + ab }, nullptr },
        { "a full stop first", { label( ".a" ) + root }, nullptr },
        { "a full stop at an end", { label( "a." ) + ab }, nullptr },
        { "a full stop at the end", { label( "a." ) + root }, "a. " },
        { "a full stop before a pointer", { ab, label( "a." ) + pointer }, nullptr },
        { "a full stop before a pointer to the root", { root, label( "a." ) + pointer }, "null a. " },
        { "a pointer to a full stop at the end", { label( "a." ) + root, x + pointer }, "a. x.a. " },
        { "an ideographic full stop", { label( "\u3002" ) + root }, nullptr },
        { "an ideographic full stop inside", { label( "a\u3002b" ) + root }, "a\u3002b " },
        { "an ideographic full stop at an end", { label( "a\uFF61" ) + ab }, nullptr },
        { "a full stop after normalisation", { label( "\u2024" ) + ab }, "\u2024.a.b " },
        { "a far full stop", { label( std::string( 40, 'a' ) + ".." ) + ab }, nullptr },
    };
    for ( const auto &row : rows ) {
        SCOPED_TRACE( row.what );
        DnsWire wire;
        for ( const auto &name : row.wire )
            wire.question( name, 1 );
        const Message msg = decode( wire.bytes );
        ASSERT_EQ( static_cast<bool>( msg ), row.expected != nullptr );
        std::string names;
        for ( pbInt i = 0; msg && i < inDnsMessageQuestionLength( msg.get() ); ++i )
            names += pb::utf8( questionName( msg, i ) ) + " ";
        EXPECT_EQ( names, row.expected ? row.expected : "" );
    }
    // A label may hold U+0000, as every creator allows.
    DnsWire wire;
    wire.question( label( std::string_view( "a\0b", 3 ) ) + ab, 1 );
    EXPECT_EQ( pb::utf8( questionName( decode( wire.bytes ), 0 ) ), std::string( "a\0b.a.b", 7 ) );
}

TEST( InDnsMessageDecode, RefusesCountsBeyondTheBytes )
{
    for ( size_t count = 4; count < 12; ++count ) {
        DnsWire wire;
        wire.question( root, 1 );
        wire.answer( root, 16, "" );
        wire.record( DnsSection::authority, root, 16, "" );
        wire.record( DnsSection::additional, root, 16, "" );
        ASSERT_TRUE( decode( wire.bytes ) );
        wire.bytes[count] = '\xFF';
        EXPECT_FALSE( decode( wire.bytes ) ) << count;
    }
}

TEST( InDnsMessageDecode, StaysCheapForTheWorstMessages )
{
    for ( const WorstMessage &row : dnsWorstNames() ) {
        SCOPED_TRACE( row.what );
        ASSERT_LE( row.wire.bytes.size(), 65535u );
        const auto buffer =
            pb::adopt( pbBufferCreateFromBytes( row.wire.bytes.data(), static_cast<pbInt>( row.wire.bytes.size() ) ) );
        const size_t inUseBefore = inUse, allocationsBefore = allocations;
        mostInUse = inUse;
        const Message msg = pb::adopt( inDnsMessageTryDecode( buffer.get() ) );
        EXPECT_LT( mostInUse - inUseBefore, size_t( 64 ) << 20 );
        EXPECT_LT( allocations - allocationsBefore, 2 * row.wire.bytes.size() );
        ASSERT_TRUE( msg );
        const pbInt questions = inDnsMessageQuestionLength( msg.get() );
        EXPECT_EQ( dns16( static_cast<uint64_t>( questions ) ), row.wire.bytes.substr( 4, 2 ) );
        if ( !questions )
            continue;
        const auto last = questionName( msg, questions - 1 );
        EXPECT_EQ( last ? pbStringLength( last.get() ) : 0, row.expected );
        EXPECT_TRUE( !last || inDnsIdnaDomainNameOk( last.get() ) );
    }
}

TEST( InDnsMessageDecode, LeavesTheWorstServicesCheapToCompleteAQueryWith )
{
    for ( const WorstMessage &row : dnsWorstServices() ) {
        SCOPED_TRACE( row.what );
        ASSERT_LE( row.wire.bytes.size(), 65535u );
        const Message msg = decode( row.wire.bytes );
        ASSERT_TRUE( msg );
        const auto query = pb::adopt( in___DnsQuerySrvImpCreate( pb::string( "a" ).get(), nullptr ) );
        const size_t inUseBefore = inUse, allocatedBefore = allocated;
        mostInUse = inUse;
        in___DnsQuerySrvImpEndSet( query.get(), pb::adopt( in___ImpDnsServiceData( msg.get() ) ).get() );
        EXPECT_LT( mostInUse - inUseBefore, size_t( 32 ) << 20 );
        EXPECT_LT( allocated - allocatedBefore, size_t( 64 ) << 20 );
        EXPECT_EQ( in___DnsQuerySrvImpDataInSrvsLength( query.get() ), row.expected );
    }
}

} // namespace
