// csDiagnosis: something to be said about a place in a configuration file.
#include "cs/cs_diagnosis.h"

#include "cs/cs_configuration_internal.h"
#include "cs/cs_diagnosis_internal.h"
#include "cs/cs_text_file_internal.h"
#include "pb/pb_assert.hpp"
#include "pb/pb_store.h"
#include "pb/pb_string.hpp"
#include "pb/pb_vector.h"

PB_SORT_DECLARE( cs___sort_CS_DIAGNOSIS )

struct csDiagnosis final : pb::Object<struct csDiagnosis, cs___sort_CS_DIAGNOSIS> {
    csDiagnosis( std::string diagnosedFile, size_t atLine, size_t atColumn, cs::Diagnosis found )
        : file( std::move( diagnosedFile ) ), line( atLine ), column( atColumn ), diagnosis( std::move( found ) )
    {
    }
    pb::String toString() const { return pb::string( cs::diagnosisText( file, line, column, diagnosis ) ); }

    const std::string file;
    const size_t line;
    const size_t column;
    const cs::Diagnosis diagnosis;
};

PB_OBJECT_DEFINE( csDiagnosis, cs___sort_CS_DIAGNOSIS )

namespace cs {

pb::Ref<struct pbVector> diagnosesOf( const Problems &problems, const std::string &file, std::string_view bytes )
{
    auto vector = pb::adopt( pbVectorCreate() );
    problems.tell( bytes, [&]( size_t line, size_t column, const Diagnosis &diagnosis ) {
        const auto obj = pb::make<struct csDiagnosis>( file, line, column, diagnosis );
        pbVectorAppend( vector.address(), csDiagnosisObj( obj.get() ) );
    } );
    return vector;
}

} // namespace cs

namespace {

struct pbVector *diagnose( std::string_view bytes, const struct pbString *name, pbBool online )
{
    cs::Problems problems( true, online );
    (void)cs::parseConfiguration( bytes, problems ); // what it finds is asked for, not the records
    return cs::diagnosesOf( problems, pb::utf8( name ), bytes ).release();
}

} // namespace

extern "C" pbInt csDiagnosisSeverity( const struct csDiagnosis *diagnosis )
{
    PB_ASSERT( diagnosis );
    return diagnosis->diagnosis.severity == cs::Severity::Error ? CS_DIAGNOSIS_ERROR : CS_DIAGNOSIS_WARNING;
}

extern "C" pbInt csDiagnosisOrigin( const struct csDiagnosis *diagnosis )
{
    PB_ASSERT( diagnosis );
    switch ( diagnosis->diagnosis.finding.origin ) {
    case cs::Origin::System:
        return CS_DIAGNOSIS_OF_SYSTEM;
    case cs::Origin::Permission:
        return CS_DIAGNOSIS_OF_PERMISSION;
    case cs::Origin::Text:
        break;
    }
    return CS_DIAGNOSIS_OF_TEXT;
}

extern "C" pbInt csDiagnosisCount( const struct csDiagnosis *diagnosis )
{
    PB_ASSERT( diagnosis );
    return static_cast<pbInt>( diagnosis->diagnosis.count );
}

extern "C" struct pbStore *csDiagnosisStore( const struct csDiagnosis *diagnosis )
{
    PB_ASSERT( diagnosis );
    const cs::Subject &subject = diagnosis->diagnosis.subject;
    const cs::Finding &finding = diagnosis->diagnosis.finding;
    auto store = pb::adopt( pbStoreCreate() );
    const auto set = [&]( const char *key, const std::string &text ) {
        if ( !text.empty() )
            pbStoreSetValueCstr( store.address(), key, -1, pb::string( text ).get() );
    };
    set( "file", diagnosis->file );
    pbStoreSetValueIntCstr( store.address(), "line", -1, static_cast<pbInt>( diagnosis->line ) );
    pbStoreSetValueIntCstr( store.address(), "column", -1, static_cast<pbInt>( diagnosis->column ) );
    set( "severity", diagnosis->diagnosis.severity == cs::Severity::Error ? "error" : "warning" );
    set( "record", subject.record );
    set( "key", subject.key );
    set( "what", finding.what );
    set( "expected", finding.expected );
    set( "nearest", finding.nearest );
    return store.release();
}

extern "C" struct pbVector *csDiagnoseFile( const struct pbString *path, pbBool online )
{
    PB_ASSERT( path );
    std::string bytes;
    const cs::Unreadable unreadable = cs::readTextFile( path, bytes );
    if ( unreadable.reason.empty() )
        return diagnose( bytes, path, online );
    cs::Problems problems;
    problems.add( 0, {}, cs::unreadableFile( unreadable ) );
    return cs::diagnosesOf( problems, pb::utf8( path ), "" ).release();
}

extern "C" struct pbVector *csDiagnoseText( const void *bytes, pbInt byteCount, const struct pbString *name,
                                            pbBool online )
{
    PB_ASSERT( byteCount >= 0 );
    PB_ASSERT( bytes || byteCount == 0 );
    PB_ASSERT( name );
    return diagnose( { static_cast<const char *>( bytes ), static_cast<size_t>( byteCount ) }, name, online );
}
