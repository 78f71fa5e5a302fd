// inStack: the public stack, over its imp. Its last release ends the imp.
#include "in/base/in_stack_imp_internal.h"
#include "in/base/in_stack_internal.h"
#include "pb/pb_object.hpp"

PB_SORT_DECLARE( in___sort_IN_STACK )

struct inStack final : pb::Object<struct inStack, in___sort_IN_STACK> {
    const pb::Ref<struct in___StackImp> imp;

    explicit inStack( struct in___StackImp *imp ) : imp( pb::adopt( imp ) ) {}
    ~inStack() { in___StackImpHalt( imp.get() ); }
};

PB_OBJECT_DEFINE( inStack, in___sort_IN_STACK )

struct inStack *inStackCreate( const struct inOptions *options, struct trAnchor *optionalAnchor )
{
    PB_ASSERT( options );
    return pb::make<struct inStack>( in___StackImpCreate( options, optionalAnchor ) ).release();
}

struct inOptions *inStackOptions( const struct inStack *stack )
{
    PB_ASSERT( stack );
    struct inOptions *options = nullptr;
    in___StackImpConfiguration( stack->imp.get(), &options, nullptr, nullptr, nullptr, nullptr );
    return options;
}

void inStackSetOptions( struct inStack *stack, const struct inOptions *options )
{
    PB_ASSERT( stack );
    PB_ASSERT( options );
    in___StackImpSetOptions( stack->imp.get(), options );
}

struct inAddress *inStackAddress( const struct inStack *stack )
{
    PB_ASSERT( stack );
    struct inAddress *address = nullptr;
    in___StackImpConfiguration( stack->imp.get(), nullptr, &address, nullptr, nullptr, nullptr );
    return address;
}

pbBool in___StackAddressIs( const struct inStack *stack, const struct inAddress *address )
{
    PB_ASSERT( stack );
    return in___StackImpAddressIs( stack->imp.get(), address );
}

pbBool inStackHasAddress( const struct inStack *stack )
{
    return PB_BOOL_FROM( pb::adopt( inStackAddress( stack ) ) );
}

struct inNwInterface *inStackPrimaryInterface( const struct inStack *stack )
{
    PB_ASSERT( stack );
    struct inNwInterface *primaryInterface = nullptr;
    in___StackImpConfiguration( stack->imp.get(), nullptr, nullptr, &primaryInterface, nullptr, nullptr );
    return primaryInterface;
}

pbBool inStackHasPrimaryInterface( const struct inStack *stack )
{
    return PB_BOOL_FROM( pb::adopt( inStackPrimaryInterface( stack ) ) );
}

struct pbVector *inStackInterfacesVector( const struct inStack *stack )
{
    PB_ASSERT( stack );
    struct pbVector *interfaces = nullptr;
    in___StackImpConfiguration( stack->imp.get(), nullptr, nullptr, nullptr, &interfaces, nullptr );
    return interfaces;
}

pbBool inStackUp( const struct inStack *stack )
{
    PB_ASSERT( stack );
    pbBool up = false;
    in___StackImpConfiguration( stack->imp.get(), nullptr, nullptr, nullptr, nullptr, &up );
    return up;
}

void inStackConfiguration( const struct inStack *stack, struct inOptions **optionalOptions,
                           struct inAddress **optionalAddress, struct inNwInterface **optionalPrimaryInterface,
                           struct pbVector **optionalInterfaces, pbBool *optionalUp )
{
    PB_ASSERT( stack );
    in___StackImpConfiguration( stack->imp.get(), optionalOptions, optionalAddress, optionalPrimaryInterface,
                                optionalInterfaces, optionalUp );
}

void inStackUpdateAddSignalable( struct inStack *stack, struct pbSignalable *signalable )
{
    PB_ASSERT( stack );
    PB_ASSERT( signalable );
    in___StackImpUpdateAddSignalable( stack->imp.get(), signalable );
}

void inStackUpdateDelSignalable( struct inStack *stack, struct pbSignalable *signalable )
{
    PB_ASSERT( stack );
    PB_ASSERT( signalable );
    in___StackImpUpdateDelSignalable( stack->imp.get(), signalable );
}

struct csStatusReporter *inStackCsStatus( const struct inStack *stack )
{
    PB_ASSERT( stack );
    return in___StackImpCsStatus( stack->imp.get() );
}

struct pbStore *inStackDnsQueriesStore( const struct inStack *stack, pbInt limit )
{
    PB_ASSERT( stack );
    PB_ASSERT( limit >= 0 );
    return in___StackImpDnsQueriesStore( stack->imp.get(), limit );
}

void inStackTraceCompleteAnchor( struct inStack *stack, struct trAnchor *anchor )
{
    PB_ASSERT( stack );
    PB_ASSERT( anchor );
    in___StackImpTraceCompleteAnchor( stack->imp.get(), anchor );
}

void in___StackTcpBlacklist( struct inStack *stack, const struct inTcpAddress *address )
{
    PB_ASSERT( stack );
    PB_ASSERT( address );
    in___StackImpTcpBlacklist( stack->imp.get(), address );
}

pbBool in___StackTcpIsBlacklisted( const struct inStack *stack, const struct inTcpAddress *address )
{
    PB_ASSERT( stack );
    PB_ASSERT( address );
    return in___StackImpTcpIsBlacklisted( stack->imp.get(), address );
}

struct in___DnsQueryAddressesImp *in___StackDnsQueryAddresses( struct inStack *stack, const struct pbString *domainName,
                                                               struct trAnchor *optionalAnchor )
{
    PB_ASSERT( stack );
    return in___StackImpDnsQueryAddresses( stack->imp.get(), domainName, optionalAnchor );
}

struct in___DnsQueryDomainNamesImp *
in___StackDnsQueryDomainNames( struct inStack *stack, const struct inAddress *address, struct trAnchor *optionalAnchor )
{
    PB_ASSERT( stack );
    return in___StackImpDnsQueryDomainNames( stack->imp.get(), address, optionalAnchor );
}

struct in___DnsQuerySrvImp *in___StackDnsQuerySrv( struct inStack *stack, const struct pbString *service,
                                                   struct trAnchor *optionalAnchor )
{
    PB_ASSERT( stack );
    return in___StackImpDnsQuerySrv( stack->imp.get(), service, optionalAnchor );
}
