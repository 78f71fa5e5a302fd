// Decoding of DNS messages: strict, all or nothing.
#include "in/dns/in_dns_message_decode.h"

#include "in/base/in_address.hpp"
#include "in/dns/in_dns_data_in_srv.hpp"
#include "in/dns/in_dns_data_mx.hpp"
#include "in/dns/in_dns_data_soa.hpp"
#include "in/dns/in_dns_data_txt.hpp"
#include "in/dns/in_dns_message.hpp"
#include "in/dns/in_dns_name_table.hpp"
#include "in/dns/in_dns_question_record.hpp"
#include "in/dns/in_dns_record_type.h"
#include "in/dns/in_dns_resource_record.hpp"

#include <algorithm>

namespace {

using in::dns::Name;
using Record = struct inDnsResourceRecord;
using Vector = pb::Ref<struct pbVector>;

constexpr pbInt headerBytes = 12;
constexpr pbInt questionBytes = 4; // behind the name
constexpr pbInt recordBytes = 10;  // behind the name, without the data
constexpr pbInt soaBytes = 20;     // behind the names
constexpr pbInt srvBytes = 6;      // before the name
constexpr uint32_t topBit = 0x80000000;

// Reads one message in the order of the wire. The functions return false when the message cannot be accepted.
class Decoder {
  public:
    explicit Decoder( const struct pbBuffer *buffer )
        // More than names and counts can reach is left unread, so that an offset fits 32 bits.
        : reader_( pbBufferBacking( buffer ), std::min( pbBufferLength( buffer ), PB_INT_FROM( UINT32_MAX ) ) ),
          names_( buffer )
    {
    }

    bool message( struct inDnsMessage &msg );

  private:
    bool questions( pbInt count, Vector &section );
    bool records( pbInt count, Vector &section );
    bool record( Record &rr );
    bool data( Record &rr, pbInt length );

    // One for each type of data; length is that of the data.
    bool address( Record &rr, pbInt length );
    template <class Kind> bool name( Record &rr );
    bool mx( Record &rr, pbInt length );
    bool soa( Record &rr );
    bool txt( Record &rr, pbInt length );
    bool srv( Record &rr, pbInt length );

    bool presentName( Name &name ) { return names_.tryRead( reader_, name ) && name; }

    // What is known to be there.
    pbInt u8();
    pbInt u16();
    uint32_t u32();

    pb::ByteReader reader_;
    in::dns::NameTable names_;
};

inline pbInt Decoder::u8()
{
    uint8_t len;
    PB_ASSERT_TEXT( reader_.tryRead( &len, 1 ), "pbDecoderTryReadByte( dec, &len )" );
    return len;
}

inline pbInt Decoder::u16()
{
    uint8_t bytes[2];
    PB_ASSERT_TEXT( reader_.tryRead( bytes, 2 ), "pbDecoderTryReadBytes( dec, bytes, 2 )" );
    return bytes[0] << 8 | bytes[1];
}

inline uint32_t Decoder::u32()
{
    uint8_t bytes[4];
    PB_ASSERT_TEXT( reader_.tryRead( bytes, 4 ), "pbDecoderTryReadBytes( dec, bytes, 4 )" );
    return uint32_t( bytes[0] ) << 24 | uint32_t( bytes[1] << 16 | bytes[2] << 8 | bytes[3] );
}

bool Decoder::message( struct inDnsMessage &msg )
{
    if ( reader_.remaining() < headerBytes )
        return false;
    msg.id = u16();
    const auto flags = static_cast<unsigned>( u16() ); // RFC 1035, 4.1.1
    msg.query = !( flags >> 15 );
    msg.operation = flags >> 11 & 0xF;
    msg.authoritativeAnswer = flags >> 10 & 1;
    msg.truncation = flags >> 9 & 1;
    msg.recursionDesired = flags >> 8 & 1;
    msg.recursionAvailable = flags >> 7 & 1;
    msg.response = flags & 0xF;
    const pbInt questionCount = u16(), answerCount = u16(), authorityCount = u16(), additionalCount = u16();
    return questions( questionCount, msg.question ) && records( answerCount, msg.answer ) &&
           records( authorityCount, msg.authority ) && records( additionalCount, msg.additional );
}

bool Decoder::questions( pbInt count, Vector &section )
{
    if ( !count )
        return true;
    // A count promises nothing: room for what the bytes can hold.
    section = pb::adopt( pb___VectorCreateWithRoom( std::min( count, reader_.remaining() / ( 1 + questionBytes ) ) ) );
    for ( ; count; --count ) {
        auto question = pb::make<struct inDnsQuestionRecord>();
        if ( !names_.tryRead( reader_, question->name ) || reader_.remaining() < questionBytes )
            return false;
        question->qtype = u16();
        question->qclass = u16();
        pb___VectorAppendAdopted( section.get(), question.release() );
    }
    return true;
}

bool Decoder::records( pbInt count, Vector &section )
{
    if ( !count )
        return true;
    section = pb::adopt( pb___VectorCreateWithRoom( std::min( count, reader_.remaining() / ( 1 + recordBytes ) ) ) );
    for ( ; count; --count ) {
        auto rr = pb::make<Record>();
        if ( !record( *rr ) )
            return false;
        pb___VectorAppendAdopted( section.get(), rr.release() );
    }
    return true;
}

bool Decoder::record( Record &rr )
{
    if ( !names_.tryRead( reader_, rr.name ) || reader_.remaining() < recordBytes )
        return false;
    rr.type = u16();
    rr.cls = u16();
    const uint32_t ttl = u32();
    const pbInt length = u16();
    if ( ttl >= topBit || length > reader_.remaining() )
        return false;
    rr.ttl = ttl;
    const pbInt end = reader_.offset() + length;
    return data( rr, length ) && reader_.offset() == end;
}

bool Decoder::data( Record &rr, pbInt length )
{
    switch ( rr.type ) {
    case IN_DNS_RECORD_TYPE_A:
    case IN_DNS_RECORD_TYPE_AAAA:
        return address( rr, length );
    case IN_DNS_RECORD_TYPE_NS:
        return name<in::dns::Ns>( rr );
    case IN_DNS_RECORD_TYPE_CNAME:
        return name<in::dns::Cname>( rr );
    case IN_DNS_RECORD_TYPE_PTR:
        return name<in::dns::Ptr>( rr );
    case IN_DNS_RECORD_TYPE_MX:
        return mx( rr, length );
    case IN_DNS_RECORD_TYPE_SOA:
        return soa( rr );
    case IN_DNS_RECORD_TYPE_TXT:
        return txt( rr, length );
    case IN_DNS_RECORD_TYPE_SRV:
        return srv( rr, length );
    default:
        return reader_.trySkip( length );
    }
}

bool Decoder::address( Record &rr, pbInt length )
{
    const bool v4 = rr.type == IN_DNS_RECORD_TYPE_A;
    if ( length != ( v4 ? 4 : 16 ) || rr.cls != IN_DNS_RECORD_CLASS_IN )
        return false;
    const uint8_t *bytes = reader_.bytes();
    rr.data = v4 ? inAddress::fromV4( bytes ) : inAddress::fromV6( bytes );
    return reader_.trySkip( length );
}

template <class Kind> bool Decoder::name( Record &rr )
{
    rr.type = IN_DNS_RECORD_TYPE_CNAME; // as the setters of all three do
    return presentName( rr.data.emplace<Kind>().name );
}

bool Decoder::mx( Record &rr, pbInt length )
{
    if ( length < 2 )
        return false;
    auto mx = pb::make<struct inDnsDataMx>();
    mx->preference = u16();
    if ( !presentName( mx->exchange ) )
        return false;
    rr.data = std::move( mx );
    return true;
}

bool Decoder::soa( Record &rr )
{
    auto soa = pb::make<struct inDnsDataSoa>();
    if ( !presentName( soa->mname ) || !presentName( soa->rname ) || reader_.remaining() < soaBytes )
        return false;
    soa->serial = static_cast<int32_t>( u32() );
    const uint32_t refresh = u32(), retry = u32(), expire = u32(), minimum = u32();
    if ( ( refresh | retry | expire | minimum ) & topBit )
        return false;
    soa->refresh = refresh;
    soa->retry = retry;
    soa->expire = expire;
    soa->minimum = minimum;
    rr.data = std::move( soa );
    return true;
}

bool Decoder::txt( Record &rr, pbInt length )
{
    auto txt = pb::make<struct inDnsDataTxt>();
    while ( length > 0 ) {
        const pbInt count = u8();
        length -= 1 + count;
        if ( length < 0 )
            return false;
        struct pbBuffer *string = pbBufferCreateFromBytes( reader_.bytes(), count );
        pb___VectorAppendAdopted( txt->buffers.get(), pbBufferObj( string ) );
        PB_ASSERT_TEXT( reader_.trySkip( count ), "pbDecoderTryRead( dec, &buf, len )" );
    }
    rr.data = std::move( txt );
    return true;
}

bool Decoder::srv( Record &rr, pbInt length )
{
    if ( length < srvBytes || rr.cls != IN_DNS_RECORD_CLASS_IN )
        return false;
    auto srv = pb::make<struct inDnsDataInSrv>();
    srv->priority = u16();
    srv->weight = u16();
    srv->port = u16();
    if ( !names_.tryRead( reader_, srv->target ) )
        return false;
    rr.data = std::move( srv );
    return true;
}

} // namespace

struct inDnsMessage *inDnsMessageTryDecode( const struct pbBuffer *buffer )
{
    PB_ASSERT( buffer );
    Decoder decoder( buffer );
    auto msg = pb::make<struct inDnsMessage>();
    return decoder.message( *msg ) ? msg.release() : nullptr;
}
