// Table: aligned columns on standard output; a cell may hold several lines.
#ifndef INCTL_TABLE_HPP
#define INCTL_TABLE_HPP

#include "inctl/output.hpp"

#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

struct libscols_table;

namespace inctl {

struct Column {
    const char *heading;
    bool right = false; // numbers align at their end
};

struct Cell {
    std::string text;
    Paint paint = Paint::Plain;

    Cell( std::string text, Paint paint = Paint::Plain ) : text( std::move( text ) ), paint( paint ) {}
};

class Table {
public:
    explicit Table( std::initializer_list<Column> columns );

    void add( const std::vector<Cell> &cells );
    // Through output.line(), so nothing is shown when JSON is wanted.
    void print( Output &output ) const;

private:
    struct Unreference {
        void operator()( libscols_table *table ) const;
    };
    std::unique_ptr<libscols_table, Unreference> table_;
};

} // namespace inctl

#endif
