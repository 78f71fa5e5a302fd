// inMapStack: an address mapping through which channels can be created in place of sockets. Declared so that channels can
// name it; there are none yet.
#ifndef IN_MAP_STACK_H
#define IN_MAP_STACK_H

struct inMapStack;

#endif
