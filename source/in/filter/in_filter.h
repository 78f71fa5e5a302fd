// inFilter: an address filter that permits or refuses peers. Declared so that channels can name it; there are none yet.
#ifndef IN_FILTER_H
#define IN_FILTER_H

struct inFilter;

#endif
