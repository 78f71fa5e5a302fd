// What streams and anchors hand to the listener.
#ifndef TR_SYSTEM_INTERNAL_H
#define TR_SYSTEM_INTERNAL_H

#include "tr/tr_system.h"

extern "C" {
// Stamps the event and gives it to the listeners that are still there.
void tr___SystemEmit( struct trEvent *event );
// The stamp of an event of now.
pbInt tr___SystemNow( void );
}

#endif
