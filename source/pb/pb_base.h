// Base types and macros of the whole system: integers, booleans, characters, assertions, checked arithmetic.
// Every public header starts here; it compiles as C11 and as C++20.
#ifndef PB_BASE_H
#define PB_BASE_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
#define PB_DECLS_BEGIN extern "C" {
#define PB_DECLS_END }
#define PB_NORETURN __attribute__( ( noreturn ) )
#else
#define PB_DECLS_BEGIN
#define PB_DECLS_END
#define PB_NORETURN _Noreturn
#endif

#define PB_API __attribute__( ( visibility( "default" ) ) )

PB_DECLS_BEGIN

typedef int64_t pbInt;   // every number of the interface
typedef int pbBool;      // zero is false, everything else true; results are 0 or 1
typedef uint32_t pbChar; // one Unicode code point

#define PB_SIZEOF_ARRAY( array ) ( (pbInt)( sizeof( array ) / sizeof( ( array )[0] ) ) )
#define PB_BOOL_FROM( value ) ( ( value ) ? 1 : 0 )
#define PB_INT_FROM( value ) ( (pbInt)( value ) )

#define PB_INT_MAX INT64_MAX
#define PB_INT_MIN INT64_MIN

// True when the 64-bit result does not overflow.
#define PB_INT_ADD_OK( a, b ) ( pbIntAddOk( ( a ), ( b ) ) )
#define PB_INT_SUB_OK( a, b ) ( pbIntSubOk( ( a ), ( b ) ) )
#define PB_INT_MUL_OK( a, b ) ( pbIntMulOk( ( a ), ( b ) ) )

// A Unicode scalar value: 0..0x10FFFF without the surrogates.
#define PB_CHAR_OK( c ) ( (pbChar)( c ) <= 0x10FFFFu && ( (pbChar)( c ) < 0xD800u || (pbChar)( c ) > 0xDFFFu ) )
#define PB_CHAR_FULL_STOP ( (pbChar)0x2E )

static inline pbBool pbIntAddOk( pbInt a, pbInt b )
{
    pbInt result;
    return !__builtin_add_overflow( a, b, &result );
}
static inline pbBool pbIntSubOk( pbInt a, pbInt b )
{
    pbInt result;
    return !__builtin_sub_overflow( a, b, &result );
}
static inline pbBool pbIntMulOk( pbInt a, pbInt b )
{
    pbInt result;
    return !__builtin_mul_overflow( a, b, &result );
}

// Clamp at the 64-bit limits instead of overflowing.
static inline pbInt pbIntAddSaturating( pbInt a, pbInt b )
{
    pbInt result;
    return !__builtin_add_overflow( a, b, &result ) ? result : a < 0 ? PB_INT_MIN : PB_INT_MAX;
}
static inline pbInt pbIntMulSaturating( pbInt a, pbInt b )
{
    pbInt result;
    return !__builtin_mul_overflow( a, b, &result ) ? result : ( a < 0 ) != ( b < 0 ) ? PB_INT_MIN : PB_INT_MAX;
}

// Index of the highest set bit of the value as unsigned 64 bits, 63..0; -1 for 0.
static inline pbInt pbIntBitHighest( pbInt value )
{
    return value ? 63 - __builtin_clzll( (unsigned long long)value ) : -1;
}

PB_DECLS_END

#endif
