// Assertions and the markers around them. In-tree only.
#ifndef PB_ASSERT_HPP
#define PB_ASSERT_HPP

#include "pb/pb_base.h"

// What a released module global holds, so that a use after shut-down faults instead of working by chance.
#define PB___INVALID ( (void *)UINTPTR_MAX )

// True when the value is representable in the unsigned type.
#define PB___INT_TO_UNSIGNED_TYPE_CONV_OK( value, type )                                                               \
    ( ( value ) >= 0 && (uint64_t)( value ) <= (uint64_t)(type)~(type)0 )

extern "C" {
// A programming error ends the process: writes "FILE:LINE: EXPRESSION" to standard error, then abort().
PB_API PB_NORETURN void pb___Abort( const char *file, int line, const char *expression );
}

// PB_ASSERT is always on. The text is the expression as written; it is made here, at the outermost macro,
// so that macros inside the expression are not expanded in it.
#define PB_ASSERT( ... ) ( __builtin_expect( !( __VA_ARGS__ ), 0 ) ? pb___Abort( __FILE__, __LINE__, #__VA_ARGS__ ) : (void)0 )
// For a promised text that the code cannot hold as an expression.
#define PB_ASSERT_TEXT( condition, text )                                                                              \
    ( __builtin_expect( !( condition ), 0 ) ? pb___Abort( __FILE__, __LINE__, ( text ) ) : (void)0 )

#endif
