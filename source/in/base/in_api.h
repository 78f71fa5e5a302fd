// IN_API marks what libin exports; everything else of the library is hidden.
#ifndef IN_API_H
#define IN_API_H

#include "pb/pb_base.h"

#define IN_API __attribute__( ( visibility( "default" ) ) )

#endif
