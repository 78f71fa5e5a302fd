// Table: aligned columns by libsmartcols.
#include "inctl/table.hpp"

#include "inctl/printable_lines.hpp"

#include <libsmartcols/libsmartcols.h>

#include <cstdlib>

namespace inctl {
namespace {

const char *scolsColour( Paint paint )
{
    switch ( paint ) {
    case Paint::Good:
        return "green";
    case Paint::Bad:
        return "red";
    case Paint::Faint:
        return "darkgray";
    case Paint::Strong:
        return "bold";
    case Paint::Plain:
        break;
    }
    return nullptr;
}

} // namespace

void Table::Unreference::operator()( libscols_table *table ) const
{
    scols_unref_table( table );
}

Table::Table( std::initializer_list<Column> columns ) : table_( scols_new_table() )
{
    if ( !table_ )
        throw std::bad_alloc();
    for ( const Column &column : columns ) {
        libscols_column *added =
            scols_table_new_column( table_.get(), column.heading, 0, column.right ? SCOLS_FL_RIGHT : SCOLS_FL_WRAP );
        if ( !added )
            throw std::bad_alloc();
        // Cells break at their line feeds, and nowhere else.
        if ( !column.right ) {
            scols_column_set_safechars( added, "\n" );
            scols_column_set_wrapfunc( added, scols_wrapnl_chunksize, scols_wrapnl_nextchunk, nullptr );
        }
    }
}

void Table::add( const std::vector<Cell> &cells )
{
    libscols_line *line = scols_table_new_line( table_.get(), nullptr );
    if ( !line )
        throw std::bad_alloc();
    for ( size_t i = 0; i < cells.size(); ++i ) {
        if ( scols_line_set_data( line, i, printableLines( cells[i].text ).c_str() ) != 0 )
            throw std::bad_alloc();
        if ( const char *colour = scolsColour( cells[i].paint ) )
            scols_cell_set_color( scols_line_get_cell( line, i ), colour );
    }
}

void Table::print( Output &output ) const
{
    if ( output.json() )
        return;
    scols_table_enable_colors( table_.get(), output.colour() );
    char *data = nullptr;
    if ( scols_print_table_to_string( table_.get(), &data ) != 0 )
        throw std::bad_alloc();
    const std::unique_ptr<char, decltype( &std::free )> owner( data, std::free );
    std::string_view text( data );
    while ( text.ends_with( '\n' ) )
        text.remove_suffix( 1 );
    output.line( text );
}

} // namespace inctl
