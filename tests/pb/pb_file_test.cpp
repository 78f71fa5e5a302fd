// Reading files whole and by line, writing to sinks.
#include "pb/pb_file.h"
#include "pb/pb_buffer.h"
#include "pb/pb_byte_sink.h"
#include "pb/pb_line_source.h"
#include "pb/pb_string.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <unistd.h>

namespace {

std::string bytesOf( const pb::Ref<pbBuffer> &buffer )
{
    return { pbBufferBacking( buffer.get() ), pbBufferBacking( buffer.get() ) + pbBufferLength( buffer.get() ) };
}

struct TemporaryFile {
    char path[32] = "/tmp/pb_file_test.XXXXXX";

    TemporaryFile() { close( mkstemp( path ) ); }
    ~TemporaryFile() { unlink( path ); }
    void write( const std::string &bytes ) const
    {
        const auto sink = pb::adopt( pbByteSinkTryCreateFile( pb::string( path ).get() ) );
        pbByteSinkWrite( sink.get(), bytes.data(), static_cast<pbInt>( bytes.size() ) );
        EXPECT_FALSE( pbByteSinkError( sink.get() ) );
    }
};

TEST( File, IsReadToItsEndWhateverItsSize )
{
    const TemporaryFile file;
    for ( const size_t size : { 0, 1, 16384, 16385, 1'000'000 } ) {
        std::string bytes( size, '\0' );
        for ( size_t i = 0; i < size; ++i )
            bytes[i] = static_cast<char>( i * 31 );
        file.write( bytes );
        EXPECT_TRUE( bytesOf( pb::adopt( pbFileTryReadAll( pb::string( file.path ).get() ) ) ) == bytes ) << size;
    }
    // A size of 0 is reported for this one.
    const auto reported = pb::adopt( pbFileTryReadAllCstr( "/proc/self/status" ) );
    EXPECT_THAT( bytesOf( reported ), testing::HasSubstr( "\nThreads:" ) );
    for ( const char *path : { "/tmp", "/nonexistent/file", "" } )
        EXPECT_FALSE( pb::adopt( pbFileTryReadAllCstr( path ) ) ) << path;
    EXPECT_FALSE( pb::adopt( pbFileTryReadAll( pb::string( { "/dev/null\0x", 11 } ).get() ) ) );
}

TEST( LineSource, GivesLinesWithoutTheirEnds )
{
    const std::string huge( 500'000, 'x' );
    const struct {
        std::string bytes;
        std::vector<std::string> lines;
    } table[] = { { "", {} },
                  { "a\n\nb", { "a", "", "b" } },
                  { "a\r\n", { "a\r" } },
                  { "\n", { "" } },
                  { "\xFF\xC3\xA9\n", { "\xEF\xBF\xBD\xC3\xA9" } },
                  { std::string( "a\0b\n", 4 ), { std::string( "a\0b", 3 ) } },
                  { huge + "\n" + huge, { huge, huge } } };
    const TemporaryFile file;
    for ( const auto &[bytes, lines] : table ) {
        SCOPED_TRACE( &lines - &table[0].lines );
        file.write( bytes );
        const auto source = pb::adopt( pbLineSourceTryOpenFileCstr( file.path ) );
        std::vector<std::string> read;
        while ( const auto line = pb::adopt( pbLineSourceTryReadLine( source.get() ) ) )
            read.push_back( pb::utf8( line ) );
        EXPECT_TRUE( read == lines );
        EXPECT_FALSE( pb::adopt( pbLineSourceTryReadLine( source.get() ) ) );
    }
    EXPECT_FALSE( pb::adopt( pbLineSourceTryOpenFileCstr( "/nonexistent/file" ) ) );
}

TEST( ByteSink, KeepsItsErrorAndHandsOutItsBuffer )
{
    const auto full = pb::adopt( pbByteSinkTryCreateFile( pb::string( "/dev/full" ).get() ) );
    EXPECT_FALSE( pbByteSinkError( full.get() ) );
    for ( const pbInt count : { 1, 0 } ) {
        pbByteSinkWrite( full.get(), "x", count );
        EXPECT_TRUE( pbByteSinkError( full.get() ) );
    }
    EXPECT_FALSE( pb::adopt( pbByteSinkBuffer( full.get() ) ) );
    EXPECT_FALSE( pb::adopt( pbByteSinkTryCreateFile( pb::string( "/nonexistent/file" ).get() ) ) );

    const auto sink = pb::adopt( pbByteSinkCreateBuffer() );
    pbByteSinkWrite( sink.get(), "ab", 2 );
    const auto before = pb::adopt( pbByteSinkBuffer( sink.get() ) );
    pbByteSinkWrite( sink.get(), "c", 1 );
    EXPECT_EQ( bytesOf( before ), "ab" );
    EXPECT_EQ( bytesOf( pb::adopt( pbByteSinkBuffer( sink.get() ) ) ), "abc" );
}

} // namespace
