// DNS messages and their parts as values: defaults, data that excludes other data, order of SRV data, preconditions.
#include "in/base/in_address.h"
#include "in/dns/in_dns_data_in_srv.hpp"
#include "in/dns/in_dns_data_mx.h"
#include "in/dns/in_dns_data_soa.h"
#include "in/dns/in_dns_data_txt.h"
#include "in/dns/in_dns_message.h"
#include "in/dns/in_dns_message_decode.h"
#include "in/dns/in_dns_question_record.h"
#include "in/dns/in_dns_resource_record.h"
#include "pb/pb_buffer.h"
#include "pb/pb_vector.h"
#include "support/ascending.hpp"
#include "support/death_table.hpp"

#include <map>
#include <set>

namespace {

using pb::string;
using DnsMessage = pb::Ref<struct inDnsMessage>;
using Record = pb::Ref<struct inDnsResourceRecord>;
using Srv = pb::Ref<struct inDnsDataInSrv>;
using Vector = pb::Ref<struct pbVector>;

const pb::String name = string( "b\u00FCcher.example" );

pb::Ref<struct inAddress> address( const char *text )
{
    return pb::adopt( inAddressTryCreateFromCstr( text, -1 ) );
}
pb::Ref<struct pbBuffer> buffer( size_t size )
{
    return pb::adopt( pbBufferCreateFromBytes( std::string( size, 'x' ).data(), static_cast<pbInt>( size ) ) );
}
pb::Ref<struct inDnsDataMx> mx()
{
    return pb::adopt( inDnsDataMxCreate( 10, name.get() ) );
}
pb::Ref<struct inDnsDataSoa> soa()
{
    return pb::adopt( inDnsDataSoaCreate( name.get(), name.get(), -1, 0, 0, 0, 0x7FFFFFFF ) );
}
Srv srv( pbInt priority, pbInt weight, pbInt port = 5060, const char *target = nullptr )
{
    return pb::adopt( inDnsDataInSrvCreate( priority, weight, port, target ? string( target ).get() : nullptr ) );
}
template <class T> Vector vectorOf( const pb::Ref<T> &element, pbInt count )
{
    auto vector = pb::adopt( pbVectorCreate() );
    for ( pbInt i = 0; i < count; ++i )
        pbVectorAppend( vector.address(), reinterpret_cast<const struct pbObj *>( element.get() ) );
    return vector;
}
std::string text( struct pbString *text )
{
    return pb::utf8( pb::adopt( text ) );
}

TEST( InDnsMessage, BeginsAsAnEmptyQuery )
{
    const auto msg = pb::adopt( inDnsMessageCreate() );
    EXPECT_TRUE( inDnsMessageIsQuery( msg.get() ) );
    EXPECT_EQ( inDnsMessageId( msg.get() ) + inDnsMessageOperation( msg.get() ) + inDnsMessageResponse( msg.get() ),
               0 );
    EXPECT_FALSE( inDnsMessageAuthoritativeAnswer( msg.get() ) || inDnsMessageTruncation( msg.get() ) ||
                  inDnsMessageRecursionDesired( msg.get() ) || inDnsMessageRecursionAvailable( msg.get() ) );
    for ( const auto section : { inDnsMessageQuestionVector, inDnsMessageAnswerVector, inDnsMessageAuthorityVector,
                                 inDnsMessageAdditionalVector } )
        EXPECT_EQ( pbVectorLength( pb::adopt( section( msg.get() ) ).get() ), 0 );
}

TEST( InDnsMessage, KeepsEachPartApart )
{
    DnsMessage msg = pb::adopt( inDnsMessageCreate() );
    const DnsMessage before = msg;
    inDnsMessageSetQuery( msg.address(), false );
    inDnsMessageSetTruncation( msg.address(), 2 );
    const auto question = pb::adopt( inDnsQuestionRecordCreate( nullptr, 65535, 0 ) );
    const Record record = pb::adopt( inDnsResourceRecordCreateMx( nullptr, 1, 0, mx().get() ) );
    inDnsMessageSetQuestionVector( msg.address(), vectorOf( question, 65535 ).get() );
    inDnsMessageSetAnswerVector( msg.address(), vectorOf( record, 1 ).get() );
    inDnsMessageSetAuthorityVector( msg.address(), vectorOf( record, 2 ).get() );
    inDnsMessageSetAdditionalVector( msg.address(), vectorOf( record, 3 ).get() );
    EXPECT_TRUE( inDnsMessageIsQuery( before.get() ) );
    EXPECT_EQ( inDnsMessageTruncation( msg.get() ), 1 );
    EXPECT_EQ( inDnsMessageQuestionLength( msg.get() ), 65535 );
    EXPECT_EQ( inDnsMessageAnswerLength( msg.get() ), 1 );
    EXPECT_EQ( inDnsMessageAuthorityLength( msg.get() ), 2 );
    EXPECT_EQ( inDnsMessageAdditionalLength( msg.get() ), 3 );
    EXPECT_TRUE( pb::adopt( inDnsMessageAdditionalResourceRecordAt( msg.get(), 2 ) ).is( record ) );
    EXPECT_EQ( inDnsMessageQuestionLength( before.get() ), 0 );
}

// Each kind of data takes the place of the one before, and sets type and class.
TEST( InDnsResourceRecord, HasOneKindOfDataAtATime )
{
    const auto txt = pb::adopt( inDnsDataTxtCreate() );
    const auto v4 = address( "192.0.2.1" ), v6 = address( "2001:db8::1" );
    const auto target = srv( 1, 2 );
    const auto slots = []( const Record &rr ) {
        const pb::Ref<struct pbObj> data[] = { pb::adopt( pbStringObj( inDnsResourceRecordCname( rr.get() ) ) ),
                                               pb::adopt( pbStringObj( inDnsResourceRecordNs( rr.get() ) ) ),
                                               pb::adopt( pbStringObj( inDnsResourceRecordPtr( rr.get() ) ) ),
                                               pb::adopt( inDnsDataMxObj( inDnsResourceRecordMx( rr.get() ) ) ),
                                               pb::adopt( inDnsDataSoaObj( inDnsResourceRecordSoa( rr.get() ) ) ),
                                               pb::adopt( inDnsDataTxtObj( inDnsResourceRecordTxt( rr.get() ) ) ),
                                               pb::adopt( inAddressObj( inDnsResourceRecordInA( rr.get() ) ) ),
                                               pb::adopt( inAddressObj( inDnsResourceRecordInAaaa( rr.get() ) ) ),
                                               pb::adopt( inDnsDataInSrvObj( inDnsResourceRecordInSrv( rr.get() ) ) ) };
        std::string found;
        for ( const auto &slot : data )
            found += slot ? 'x' : '-';
        return found;
    };
    struct {
        const char *slots;
        Record created;
        std::function<void( struct inDnsResourceRecord ** )> set;
        pbInt type;
        bool alwaysIn = false;
    } const rows[] = { { "x--------", pb::adopt( inDnsResourceRecordCreateCname( nullptr, 3, 7, name.get() ) ),
                         []( auto rr ) { inDnsResourceRecordSetCname( rr, 4, name.get() ); }, 5 },
                       { "-x-------", pb::adopt( inDnsResourceRecordCreateNs( nullptr, 3, 7, name.get() ) ),
                         []( auto rr ) { inDnsResourceRecordSetNs( rr, 4, name.get() ); }, 5 },
                       { "--x------", pb::adopt( inDnsResourceRecordCreatePtr( nullptr, 3, 7, name.get() ) ),
                         []( auto rr ) { inDnsResourceRecordSetPtr( rr, 4, name.get() ); }, 5 },
                       { "---x-----", pb::adopt( inDnsResourceRecordCreateMx( nullptr, 3, 7, mx().get() ) ),
                         []( auto rr ) { inDnsResourceRecordSetMx( rr, 4, mx().get() ); }, 15 },
                       { "----x----", pb::adopt( inDnsResourceRecordCreateSoa( nullptr, 3, 7, soa().get() ) ),
                         []( auto rr ) { inDnsResourceRecordSetSoa( rr, 4, soa().get() ); }, 6 },
                       { "-----x---", pb::adopt( inDnsResourceRecordCreateTxt( nullptr, 3, 7, txt.get() ) ),
                         [&]( auto rr ) { inDnsResourceRecordSetTxt( rr, 4, txt.get() ); }, 16 },
                       { "------x--", pb::adopt( inDnsResourceRecordCreateInA( nullptr, 7, v4.get() ) ),
                         [&]( auto rr ) { inDnsResourceRecordSetInA( rr, v4.get() ); }, 1, true },
                       { "-------x-", pb::adopt( inDnsResourceRecordCreateInAaaa( nullptr, 7, v6.get() ) ),
                         [&]( auto rr ) { inDnsResourceRecordSetInAaaa( rr, v6.get() ); }, 28, true },
                       { "--------x", pb::adopt( inDnsResourceRecordCreateInSrv( nullptr, 7, target.get() ) ),
                         [&]( auto rr ) { inDnsResourceRecordSetInSrv( rr, target.get() ); }, 33, true } };
    for ( const auto &row : rows ) {
        Record changed = rows[0].created;
        row.set( changed.address() );
        for ( const auto &[rr, cls] : { std::pair{ row.created, 3 }, { changed, 4 } } ) {
            EXPECT_EQ( slots( rr ), row.slots );
            EXPECT_EQ( inDnsResourceRecordType( rr.get() ), row.type ) << row.slots;
            EXPECT_EQ( inDnsResourceRecordClass( rr.get() ), row.alwaysIn ? 1 : cls ) << row.slots;
            EXPECT_EQ( inDnsResourceRecordTtl( rr.get() ), 7 );
        }
    }
    EXPECT_EQ( slots( rows[0].created ), rows[0].slots );
}

TEST( InDnsDataInSrv, OrdersByDescendingPriorityThenWeightTargetAndPort )
{
    const std::map<std::string, Srv> records = {
        { "20 9 1 -", srv( 20, 9, 1 ) },      { "10 1 9 -", srv( 10, 1, 9 ) },
        { "10 1 1 a", srv( 10, 1, 1, "a" ) }, { "10 1 2 a", srv( 10, 1, 2, "a" ) },
        { "10 1 1 b", srv( 10, 1, 1, "b" ) }, { "10 2 1 -", srv( 10, 2, 1 ) },
        { "0 0 1 -", srv( 0, 0, 1 ) } };
    support::expectAscending( { "20 9 1 -", "10 1 9 -", "10 1 1 a", "10 1 2 a", "10 1 1 b", "10 2 1 -", "0 0 1 -" },
                              [&]( const char *row ) { return records.at( row ); } );
    EXPECT_EQ( text( inDnsDataInSrvToString( srv( 1, 70000, 3 ).get() ) ), "1 70000 3 null" );
    EXPECT_EQ( text( inDnsDataInSrvToString( srv( 1, 2, 3, "a.b" ).get() ) ), "1 2 3 a.b" );
}

TEST( InDnsDataInSrv, DrawsByRunningTotal )
{
    struct {
        std::vector<pbInt> weights;
        std::vector<size_t> indexes; // for 0..sum
    } const rows[] = { { { 1, 1 }, { 0, 0, 1 } }, { { 3 }, { 0, 0, 0, 0 } }, { { 1, 3, 1 }, { 0, 0, 1, 1, 1, 2 } } };
    for ( const auto &row : rows )
        for ( size_t drawn = 0; drawn < row.indexes.size(); ++drawn )
            EXPECT_EQ( in::dns::RunningTotals( row.weights ).firstToReach( static_cast<pbInt>( drawn ) ),
                       row.indexes[drawn] );
    // What was taken is passed over: of 1 2 3 4 5 only 1, 3 and 4 are left.
    in::dns::RunningTotals totals( { 1, 2, 3, 4, 5 } );
    totals.subtract( 1, 2 );
    totals.subtract( 4, 5 );
    const std::vector<size_t> expected = { 0, 0, 2, 2, 2, 3, 3, 3, 3 };
    for ( size_t drawn = 0; drawn < expected.size(); ++drawn )
        EXPECT_EQ( totals.firstToReach( static_cast<pbInt>( drawn ) ), expected[drawn] ) << drawn;
}

TEST( InDnsDataInSrv, VectorIsTriedByPriorityAndWeightlessLast )
{
    auto vec = pb::adopt( pbVectorCreate() );
    for ( const auto &[priority, weight] :
          { std::pair{ 20, 1 }, { 10, 0 }, { 10, 5 }, { 30, 0 }, { 10, 0 }, { 10, 7 }, { 20, 1 } } )
        pbVectorAppend( vec.address(),
                        inDnsDataInSrvObj( srv( priority, weight, 1 + pbVectorLength( vec.get() ) ).get() ) );
    std::set<std::string> seen;
    for ( int round = 0; round < 1000; ++round ) {
        const Vector ordered = pb::adopt( inDnsDataInSrvVectorOrder( vec.get() ) );
        std::string groups, ports;
        for ( pbInt i = 0; i < pbVectorLength( ordered.get() ); ++i ) {
            const Srv at = pb::adopt( inDnsDataInSrvFrom( pbVectorObjAt( ordered.get(), i ) ) );
            groups += std::to_string( inDnsDataInSrvPriority( at.get() ) ) +
                      ( inDnsDataInSrvWeight( at.get() ) ? "w " : "0 " );
            ports += std::to_string( inDnsDataInSrvPort( at.get() ) );
        }
        ASSERT_EQ( groups, "10w 10w 100 100 20w 20w 300 " );
        seen.insert( ports );
        std::sort( ports.begin(), ports.end() );
        ASSERT_EQ( ports, "1234567" );
    }
    EXPECT_EQ( seen.size(), 8u ); // two of each group, either way
}

TEST( InDnsDataTxt, EditsItsStrings )
{
    auto txt = pb::adopt( inDnsDataTxtCreate() );
    const auto lengths = []( const auto &txt ) {
        std::string list;
        for ( pbInt i = 0; i < inDnsDataTxtBuffersLength( txt.get() ); ++i )
            list += std::to_string( pbBufferLength( pb::adopt( inDnsDataTxtBufferAt( txt.get(), i ) ).get() ) ) + " ";
        return list;
    };
    inDnsDataTxtAppendBuffer( txt.address(), buffer( 255 ).get() );
    inDnsDataTxtPrependBuffer( txt.address(), buffer( 0 ).get() );
    const auto before = txt;
    inDnsDataTxtInsertBuffer( txt.address(), 1, buffer( 2 ).get() );
    inDnsDataTxtSetBufferAt( txt.address(), 0, buffer( 3 ).get() );
    EXPECT_EQ( lengths( txt ), "3 2 255 " );
    inDnsDataTxtDelBufferAt( txt.address(), 1 );
    EXPECT_EQ( lengths( txt ), "3 255 " );
    inDnsDataTxtSetBuffersVector( txt.address(), vectorOf( buffer( 256 ), 2 ).get() );
    EXPECT_EQ( lengths( txt ), "256 256 " );
    EXPECT_EQ( lengths( before ), "0 255 " );
}

TEST( InDnsMessageDeath, Preconditions )
{
    DnsMessage msg = pb::adopt( inDnsMessageCreate() );
    auto question = pb::adopt( inDnsQuestionRecordCreate( nullptr, 1, 1 ) );
    const Record record = pb::adopt( inDnsResourceRecordCreateMx( nullptr, 1, 0, mx().get() ) );
    const Vector questions = vectorOf( question, 65536 ), records = vectorOf( record, 65536 );
    const auto sectionDeaths = [&]( auto set, const std::string &vector, const char *sort, const Vector &wrong,
                                    const Vector &tooMany ) {
        support::expectDeaths(
            { { [&] { set( msg.address(), wrong.get() ); }, "pbVectorContainsOnly( " + vector + ", " + sort + "() )" },
              { [&] { set( msg.address(), tooMany.get() ); }, "pbVectorLength( " + vector + " ) <= 65535" } } );
    };
    sectionDeaths( inDnsMessageSetQuestionVector, "questionVector", "inDnsQuestionRecordSort", records, questions );
    sectionDeaths( inDnsMessageSetAnswerVector, "answerVector", "inDnsResourceRecordSort", questions, records );
    sectionDeaths( inDnsMessageSetAuthorityVector, "authorityVector", "inDnsResourceRecordSort", questions, records );
    sectionDeaths( inDnsMessageSetAdditionalVector, "additionalVector", "inDnsResourceRecordSort", questions, records );
    support::expectDeaths(
        { { [&] { inDnsMessageSetId( msg.address(), 65536 ); }, "id>=0 && id<=65535" },
          { [&] { inDnsMessageSetOperation( msg.address(), 16 ); }, "IN_DNS_OPERATION_OK( operation )" },
          { [&] { inDnsMessageSetResponse( msg.address(), -1 ); }, "IN_DNS_RESPONSE_OK( response )" },
          { [&] { inDnsMessageEncode( msg.get() ); }, "inDnsMessageEncode() not implemented" },
          { [&] { inDnsMessageEncode( nullptr ); }, "msg" },
          { [] { inDnsQuestionRecordCreate( string( "a..b" ).get(), 1, 1 ); },
            "!optionalIdn || inDnsIdnaDomainNameOk( optionalIdn )" },
          { [] { inDnsQuestionRecordCreate( nullptr, 65536, 1 ); }, "IN_DNS_RECORD_TYPE_OK( qtype )" },
          { [] { inDnsQuestionRecordCreate( nullptr, 1, -1 ); }, "IN_DNS_RECORD_CLASS_OK( qclass )" },
          { [&] { inDnsQuestionRecordSetName( question.address(), string( "" ).get() ); },
            "inDnsIdnaDomainNameOk( idn )" } } );
}

TEST( InDnsResourceRecordDeath, Preconditions )
{
    Record rr = pb::adopt( inDnsResourceRecordCreateMx( nullptr, 1, 0, mx().get() ) );
    const auto bad = string( ".a" );
    support::expectDeaths(
        { { [&] { inDnsResourceRecordCreateMx( bad.get(), 1, 0, mx().get() ); },
            "!optionalIdn || inDnsIdnaDomainNameOk( optionalIdn )" },
          { [&] { inDnsResourceRecordCreateMx( nullptr, 65536, 0, mx().get() ); }, "IN_DNS_RECORD_CLASS_OK( cls )" },
          { [&] { inDnsResourceRecordCreateMx( nullptr, 1, -1, mx().get() ); }, "ttl >= 0" },
          { [&] { inDnsResourceRecordSetTtl( rr.address(), 0x80000000 ); }, "ttl <= 0x7FFFFFFF" },
          { [&] { inDnsResourceRecordSetName( rr.address(), bad.get() ); }, "inDnsIdnaDomainNameOk( idn )" },
          { [&] { inDnsResourceRecordSetCname( rr.address(), 1, bad.get() ); }, "inDnsIdnaDomainNameOk( cname )" },
          { [&] { inDnsResourceRecordSetNs( rr.address(), 1, bad.get() ); }, "inDnsIdnaDomainNameOk( ns )" },
          { [&] { inDnsResourceRecordSetPtr( rr.address(), 1, bad.get() ); }, "inDnsIdnaDomainNameOk( ptr )" },
          { [&] { inDnsResourceRecordSetInA( rr.address(), address( "::1" ).get() ); }, "inAddressIsV4( ina )" },
          { [&] { inDnsResourceRecordSetInAaaa( rr.address(), address( "1.2.3.4" ).get() ); },
            "inAddressIsV6( ina )" } } );
}

TEST( InDnsDataDeath, Preconditions )
{
    Srv subject = srv( 0, 0 );
    auto exchange = mx();
    auto start = soa();
    auto txt = pb::adopt( inDnsDataTxtCreate() );
    const auto bad = string( "a..b" );
    const Vector many = vectorOf( srv( 1, PB_INT_MAX ), 2 );
    support::expectDeaths(
        { { [] { srv( -1, 0 ); }, "priority >= 0 && priority <= 65535" },
          { [] { srv( 0, -1 ); }, "weight >= 0 && priority <= 65535" },
          { [] { srv( 0, 0, 65536 ); }, "port >= 0 && port <= 65535" },
          { [] { srv( 0, 0, 0, "a..b" ); }, "!optionalTarget || inDnsIdnaDomainNameOk( optionalTarget )" },
          { [&] { inDnsDataInSrvSetPriority( subject.address(), 65536 ); }, "priority >= 0 && priority <= 65535" },
          { [&] { inDnsDataInSrvSetWeight( subject.address(), 70000 ); }, "weight >= 0 && weight <= 65535" },
          { [&] { inDnsDataInSrvSetTarget( subject.address(), bad.get() ); }, "inDnsIdnaDomainNameOk( target )" },
          { [&] { inDnsDataInSrvVectorOrder( vectorOf( exchange, 1 ).get() ); },
            "pbVectorContainsOnly( vec, inDnsDataInSrvSort() )" },
          { [&] { inDnsDataInSrvVectorOrder( many.get() ); }, "PB_INT_ADD_OK( sum, weight )" },
          { [&] { inDnsDataMxSetPreference( exchange.address(), 65536 ); }, "preference>=0 && preference<=65535" },
          { [&] { inDnsDataMxSetExchange( exchange.address(), bad.get() ); }, "inDnsIdnaDomainNameOk( exchange )" },
          { [&] { inDnsDataSoaSetMname( start.address(), bad.get() ); }, "inDnsIdnaDomainNameOk( mname )" },
          { [&] { inDnsDataSoaSetRname( start.address(), bad.get() ); }, "inDnsIdnaDomainNameOk( rname )" },
          { [&] { inDnsDataSoaSetSerial( start.address(), 0x80000000 ); },
            "serial>=(PB_INT_FROM(-2147483647)-PB_INT_FROM(1)) && serial<=(PB_INT_FROM(2147483647))" },
          { [&] { inDnsDataSoaSetRefresh( start.address(), -1 ); }, "refresh>=0 && refresh<=0x7FFFFFFF" },
          { [&] { inDnsDataSoaSetMinimum( start.address(), 0x80000000 ); }, "minimum>=0 && minimum<=0x7FFFFFFF" },
          { [&] { inDnsDataTxtAppendBuffer( txt.address(), buffer( 256 ).get() ); }, "pbBufferLength( buf ) <= 255" },
          { [&] { inDnsDataTxtSetBuffersVector( txt.address(), many.get() ); },
            "pbVectorContainsOnly( vec, pbBufferSort() )" } } );
}

} // namespace
