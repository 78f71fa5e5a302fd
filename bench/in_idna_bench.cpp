// ToASCII and ToUnicode of an ASCII, a German and a CJK label, string objects included, against GNU libidn, libidn2 and
// ICU; and the check of a whole ASCII name.
#include "bench_ratio.hpp"

#include "in/dns/in_dns_idna.h"
#include "pb/pb_string.hpp"

#define IDN2_SKIP_LIBIDN_COMPAT
#include <idn2.h>
#include <idna.h>
#include <unicode/uidna.h>

#include <cstdlib>

namespace {

struct Sample {
    const char *name;
    pb::String unicode, ascii;
    std::u32string unicode32, ascii32; // also NUL-terminated
    std::u16string unicode16, ascii16; // all of the basic plane

    Sample( const char *name, const char *unicodeUtf8, const char *asciiUtf8 )
        : name( name ), unicode( pb::string( unicodeUtf8 ) ), ascii( pb::string( asciiUtf8 ) ), unicode32( pb::view( unicode.get() ) ),
          ascii32( pb::view( ascii.get() ) ), unicode16( unicode32.begin(), unicode32.end() ), ascii16( ascii32.begin(), ascii32.end() )
    {}
};

const uint32_t *codes( const std::u32string &text ) { return reinterpret_cast<const uint32_t *>( text.data() ); }

const UIDNA *icu()
{
    static UErrorCode error = U_ZERO_ERROR;
    static const UIDNA *const instance = uidna_openUTS46( UIDNA_DEFAULT, &error );
    return instance;
}

void toAscii( const Sample &sample )
{
    struct pbString *const ascii = inDnsIdnaLabelToAscii( sample.unicode.get() );
    benchmark::DoNotOptimize( ascii );
    pbStringRelease( ascii );
}

void toUnicode( const Sample &sample )
{
    struct pbString *const unicode = inDnsIdnaLabelToUnicode( sample.ascii.get() );
    benchmark::DoNotOptimize( unicode );
    pbStringRelease( unicode );
}

void libidnToAscii( const Sample &sample )
{
    char ascii[64];
    benchmark::DoNotOptimize( idna_to_ascii_4i( codes( sample.unicode32 ), sample.unicode32.size(), ascii, IDNA_ALLOW_UNASSIGNED ) );
    benchmark::DoNotOptimize( ascii );
}

void libidnToUnicode( const Sample &sample )
{
    uint32_t unicode[64];
    size_t length = 64;
    benchmark::DoNotOptimize(
        idna_to_unicode_44i( codes( sample.ascii32 ), sample.ascii32.size(), unicode, &length, IDNA_ALLOW_UNASSIGNED ) );
    benchmark::DoNotOptimize( unicode );
}

void libidn2ToAscii( const Sample &sample )
{
    char *ascii = nullptr;
    benchmark::DoNotOptimize( idn2_to_ascii_4i2( codes( sample.unicode32 ), sample.unicode32.size(), &ascii, IDN2_NFC_INPUT ) );
    idn2_free( ascii );
}

void libidn2ToUnicode( const Sample &sample )
{
    uint32_t *unicode = nullptr;
    benchmark::DoNotOptimize( idn2_to_unicode_4z4z( codes( sample.ascii32 ), &unicode, 0 ) );
    idn2_free( unicode );
}

template <auto Convert> void icuConvert( const std::u16string &source )
{
    UChar result[64];
    UIDNAInfo info = UIDNA_INFO_INITIALIZER;
    UErrorCode error = U_ZERO_ERROR;
    benchmark::DoNotOptimize( Convert( icu(), source.data(), static_cast<int32_t>( source.size() ), result, 64, &info, &error ) );
    benchmark::DoNotOptimize( result );
}

void icuToAscii( const Sample &sample ) { icuConvert<uidna_labelToASCII>( sample.unicode16 ); }
void icuToUnicode( const Sample &sample ) { icuConvert<uidna_labelToUnicode>( sample.ascii16 ); }

void NameOk( benchmark::State &state, const char *text )
{
    const pb::String name = pb::string( text );
    for ( auto _ : state )
        benchmark::DoNotOptimize( inDnsIdnaDomainNameOk( name.get() ) );
}
BENCHMARK_CAPTURE( NameOk, ascii, "_sip._udp.registrar.example.com" );
BENCHMARK_CAPTURE( NameOk, german, "registrar.m\u00FCnchen.example.de" );

using Work = void( const Sample & );
const struct {
    const char *name;
    Work *work;
} subjects[] = { { "toAscii", toAscii }, { "toUnicode", toUnicode } },
  peers[][2] = { { { "libidnToAscii", libidnToAscii }, { "libidnToUnicode", libidnToUnicode } },
                 { { "libidn2ToAscii", libidn2ToAscii }, { "libidn2ToUnicode", libidn2ToUnicode } },
                 { { "icuToAscii", icuToAscii }, { "icuToUnicode", icuToUnicode } } };

std::string registerCase( const char *name, Work *work, const Sample &sample )
{
    const std::string whole = std::string( name ) + "/" + sample.name;
    benchmark::RegisterBenchmark( whole.c_str(), [work, &sample]( benchmark::State &state ) {
        for ( auto _ : state )
            work( sample );
        state.SetItemsProcessed( state.iterations() );
    } );
    return name + std::string( "/" ) + sample.name;
}

} // namespace

int main( int argumentCount, char **arguments )
{
    static const Sample samples[] = { { "ascii", "registrar", "registrar" },
                                      { "german", "b\u00FCcherstra\u00DFe", "xn--bcherstrasse-dlb" },
                                      { "cjk", "\u4ED6\u4EEC\u4E3A\u4EC0\u4E48\u4E0D\u8BF4\u4E2D\u6587", "xn--ihqwcrb4cv8a8dqg056pqjye" } };
    std::vector<bench::Pair> pairs;
    for ( const Sample &sample : samples )
        for ( size_t direction = 0; direction < 2; ++direction ) {
            const std::string subject = registerCase( subjects[direction].name, subjects[direction].work, sample );
            for ( const auto &peer : peers )
                pairs.push_back( { subject, registerCase( peer[direction].name, peer[direction].work, sample ), 1, "" } );
        }
    return bench::run( argumentCount, arguments, pairs );
}
