// inFilterOptions: the configuration of an address filter.
#include "in/filter/in_filter_options.h"

#include "in/base/in_stack.h"
#include "in/base/in_store_form_vector.hpp"
#include "in/filter/in_filter_entry.h"
#include "in/filter/in_filter_entry_internal.h"
#include "in/filter/in_filter_options_internal.h"

PB_SORT_DECLARE( in___sort_IN_FILTER_OPTIONS )

namespace {

constexpr pbBool stackAddressPermittedDefault = true;
constexpr pbInt rebuildIntervalDefault = 600'000;

} // namespace

struct inFilterOptions final : pb::Object<struct inFilterOptions, in___sort_IN_FILTER_OPTIONS> {
    pb::Ref<struct pbVector> entries = pb::adopt( pbVectorCreate() ); // never null
    pb::Ref<struct inStack> stack;                                    // compares by identity
    pb::String stackName;
    pb::Defaulted<pbBool> stackAddressPermitted{ stackAddressPermittedDefault };
    pb::Defaulted<pbInt> rebuildInterval{ rebuildIntervalDefault };

    auto operator<=>( const inFilterOptions & ) const = default;
};

PB_OBJECT_DEFINE( inFilterOptions, in___sort_IN_FILTER_OPTIONS )

namespace {

using in::form::Row;
using in::form::StoreOf;
using in::form::Told;

struct pbStore *storeEntry( const struct inFilterEntry *entry, pbBool )
{
    return inFilterEntryStore( entry ); // which has no defaults to store
}

constexpr auto form = std::tuple{
    Row{ "entries", &inFilterOptions::entries,
         Told{ in::form::VectorOf<struct inFilterEntry, StoreOf<struct inFilterEntry>>{
                   { storeEntry, inFilterEntryTryRestore, in___FilterEntryKeys } },
               "Who is let in" },
         in::form::always },
    Row{ "stackName", &inFilterOptions::stackName,
         Told{ in::form::RecordName{ "IN_STACK" }, "The stack that is asked for names" }, in::form::whenPresent },
    Row{ "stackAddressPermitted", &inFilterOptions::stackAddressPermitted,
         Told{ in::form::Boolean{}, "Lets the stack's own address in" }, in::form::unlessDefault },
    Row{ "rebuildInterval", &inFilterOptions::rebuildInterval,
         Told{ in::form::Integer{ 1, PB_INT_MAX, "milliseconds, 1 or more" },
               "The time after which names are looked up again, in milliseconds" },
         in::form::unlessDefault },
};

struct pbVector **editEntries( struct inFilterOptions **options )
{
    PB_ASSERT( options );
    PB_ASSERT( *options );
    return pb::edit( options ).entries.address();
}

const struct pbObj *entryObj( const struct inFilterEntry *entry )
{
    PB_ASSERT( entry );
    return inFilterEntryObj( entry );
}

} // namespace

const struct csKey *in___FilterOptionsKeys( pbInt *count )
{
    return in::form::describe<form>( count );
}

struct inFilterOptions *inFilterOptionsCreate( void )
{
    return pb::make<struct inFilterOptions>().release();
}

struct inFilterOptions *inFilterOptionsCreateFrom( const struct inFilterOptions *source )
{
    PB_ASSERT( source );
    return pb::make<struct inFilterOptions>( *source ).release();
}

pbInt inFilterOptionsEntriesLength( const struct inFilterOptions *options )
{
    PB_ASSERT( options );
    return pbVectorLength( options->entries.get() );
}

struct pbVector *inFilterOptionsEntriesVector( const struct inFilterOptions *options )
{
    PB_ASSERT( options );
    return options->entries.share();
}

void inFilterOptionsSetEntriesVector( struct inFilterOptions **options, const struct pbVector *vec )
{
    PB_ASSERT( options );
    PB_ASSERT( *options );
    PB_ASSERT( vec );
    PB_ASSERT( pbVectorContainsOnly( vec, inFilterEntrySort() ) );
    pb::edit( options ).entries = pb::share( vec );
}

void inFilterOptionsClearEntries( struct inFilterOptions **options )
{
    pbVectorClear( editEntries( options ) );
}

struct inFilterEntry *inFilterOptionsEntryAt( const struct inFilterOptions *options, pbInt index )
{
    PB_ASSERT( options );
    return inFilterEntryFrom( pbVectorObjAt( options->entries.get(), index ) );
}

void inFilterOptionsSetEntryAt( struct inFilterOptions **options, pbInt index, const struct inFilterEntry *entry )
{
    pbVectorSetObjAt( editEntries( options ), index, entryObj( entry ) );
}

void inFilterOptionsDelEntryAt( struct inFilterOptions **options, pbInt index )
{
    pbVectorDelAt( editEntries( options ), index );
}

void inFilterOptionsAppendEntry( struct inFilterOptions **options, const struct inFilterEntry *entry )
{
    pbVectorAppend( editEntries( options ), entryObj( entry ) );
}

void inFilterOptionsPrependEntry( struct inFilterOptions **options, const struct inFilterEntry *entry )
{
    pbVectorPrepend( editEntries( options ), entryObj( entry ) );
}

void inFilterOptionsInsertEntry( struct inFilterOptions **options, pbInt index, const struct inFilterEntry *entry )
{
    pbVectorInsert( editEntries( options ), index, entryObj( entry ) );
}

struct inStack *inFilterOptionsStack( const struct inFilterOptions *options )
{
    PB_ASSERT( options );
    return options->stack.share();
}

pbBool inFilterOptionsHasStack( const struct inFilterOptions *options )
{
    PB_ASSERT( options );
    return PB_BOOL_FROM( options->stack );
}

void inFilterOptionsSetStack( struct inFilterOptions **options, struct inStack *stack )
{
    PB_ASSERT( options );
    PB_ASSERT( *options );
    PB_ASSERT( stack );
    pb::edit( options ).stack = pb::share( stack );
}

void inFilterOptionsDelStack( struct inFilterOptions **options )
{
    PB_ASSERT( options );
    PB_ASSERT( *options );
    pb::edit( options ).stack.reset();
}

struct pbString *inFilterOptionsStackName( const struct inFilterOptions *options )
{
    PB_ASSERT( options );
    return options->stackName.share();
}

pbBool inFilterOptionsHasStackName( const struct inFilterOptions *options )
{
    PB_ASSERT( options );
    return PB_BOOL_FROM( options->stackName );
}

void inFilterOptionsSetStackName( struct inFilterOptions **options, const struct pbString *stackName )
{
    PB_ASSERT( options );
    PB_ASSERT( *options );
    PB_ASSERT( csObjectRecordNameOk( stackName ) );
    pb::edit( options ).stackName = pb::share( stackName );
}

void inFilterOptionsDelStackName( struct inFilterOptions **options )
{
    PB_ASSERT( options );
    PB_ASSERT( *options );
    pb::edit( options ).stackName.reset();
}

pbBool inFilterOptionsStackAddressPermitted( const struct inFilterOptions *options )
{
    PB_ASSERT( options );
    return options->stackAddressPermitted.value;
}

pbBool inFilterOptionsStackAddressPermittedDefault( const struct inFilterOptions *options )
{
    PB_ASSERT( options );
    return options->stackAddressPermitted.isDefault;
}

void inFilterOptionsSetStackAddressPermitted( struct inFilterOptions **options, pbBool permitted )
{
    PB_ASSERT( options );
    PB_ASSERT( *options );
    pb::edit( options ).stackAddressPermitted.set( PB_BOOL_FROM( permitted ) );
}

void inFilterOptionsSetStackAddressPermittedDefault( struct inFilterOptions **options )
{
    PB_ASSERT( options );
    PB_ASSERT( *options );
    pb::edit( options ).stackAddressPermitted.setDefault( stackAddressPermittedDefault );
}

pbInt inFilterOptionsRebuildInterval( const struct inFilterOptions *options )
{
    PB_ASSERT( options );
    return options->rebuildInterval.value;
}

pbBool inFilterOptionsRebuildIntervalDefault( const struct inFilterOptions *options )
{
    PB_ASSERT( options );
    return options->rebuildInterval.isDefault;
}

void inFilterOptionsSetRebuildInterval( struct inFilterOptions **options, pbInt interval )
{
    PB_ASSERT( options );
    PB_ASSERT( *options );
    PB_ASSERT( interval > 0 );
    pb::edit( options ).rebuildInterval.set( interval );
}

void inFilterOptionsSetRebuildIntervalDefault( struct inFilterOptions **options )
{
    PB_ASSERT( options );
    PB_ASSERT( *options );
    pb::edit( options ).rebuildInterval.setDefault( rebuildIntervalDefault );
}

struct pbStore *inFilterOptionsStore( const struct inFilterOptions *options, pbBool storeDefaults )
{
    PB_ASSERT( options );
    return in::form::store( *options, form, storeDefaults ).release();
}

struct inFilterOptions *inFilterOptionsRestore( const struct pbStore *store )
{
    PB_ASSERT( store );
    auto options = pb::make<struct inFilterOptions>();
    (void)in::form::restore( *options, form, store ); // what is not valid keeps its default
    return options.release();
}
