// What streams and anchors hand to the listener.
#ifndef TR_SYSTEM_INTERNAL_H
#define TR_SYSTEM_INTERNAL_H

#include "tr/tr_system.h"

extern "C" {
// Stamps the event and gives it to the listener, if there still is one.
void tr___SystemEmit( struct trEvent *event );
}

#endif
