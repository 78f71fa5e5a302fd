// Applies edits to a text, and shows them as a unified diff. The diff is made of the edits, not found by comparing:
// its cost is that of the text.
#include "cs/cs_text_edit_internal.h"

#include <algorithm>
#include <deque>

namespace cs {
namespace {

// Lines of the old text and what stands for them in the new one.
struct Change {
    size_t first, last; // of the old lines, last not included
    std::vector<std::string_view> fresh;
};

std::vector<std::string_view> linesOf( std::string_view text )
{
    const Lines lines( text );
    std::vector<std::string_view> result;
    for ( size_t line = 0; line < lines.count(); ++line )
        result.push_back( text.substr( lines.begin( line ), lines.end( line ) - lines.begin( line ) ) );
    return result;
}

class Diff {
public:
    Diff( std::string_view text, const std::vector<TextEdit> &edits ) : old_( linesOf( text ) )
    {
        const Lines lines( text );
        // Edits that touch one line make one change; its new text is kept while its lines are looked at.
        for ( size_t i = 0; i < edits.size(); ) {
            const size_t first = lines.of( edits[i].begin );
            size_t last = lines.of( edits[i].end ) + 1, next = i + 1;
            for ( ; next < edits.size() && lines.of( edits[next].begin ) < last; ++next )
                last = lines.of( edits[next].end ) + 1;
            last = std::min( last, lines.count() );
            const size_t begin = first < lines.count() ? lines.begin( first ) : text.size();
            const size_t end = last > 0 ? lines.end( last - 1 ) : 0;
            std::vector<TextEdit> inside( edits.begin() + static_cast<std::ptrdiff_t>( i ),
                                          edits.begin() + static_cast<std::ptrdiff_t>( next ) );
            for ( TextEdit &edit : inside ) {
                edit.begin -= begin;
                edit.end -= begin;
            }
            texts_.push_back( editedText( text.substr( begin, end - begin ), inside ) );
            add( { std::min( first, last ), last, linesOf( texts_.back() ) } );
            i = next;
        }
    }

    std::string text( const std::string &name ) const
    {
        if ( changes_.empty() )
            return "";
        std::string result = "--- " + name + "\n+++ " + name + "\n";
        std::ptrdiff_t shift = 0; // of the new lines against the old ones
        for ( size_t i = 0; i < changes_.size(); ) {
            size_t next = i + 1;
            while ( next < changes_.size() && changes_[next].first - changes_[next - 1].last <= 2 * Context )
                ++next;
            hunk( i, next, shift, result );
            i = next;
        }
        return result;
    }

private:
    static constexpr size_t Context = 3;

    // Without the lines that are the same at both ends.
    void add( Change change )
    {
        auto &[first, last, fresh] = change;
        const auto same = std::mismatch( fresh.begin(), fresh.end(), old_.begin() + static_cast<std::ptrdiff_t>( first ),
                                         old_.begin() + static_cast<std::ptrdiff_t>( last ) );
        first = static_cast<size_t>( same.second - old_.begin() );
        fresh.erase( fresh.begin(), same.first );
        while ( first < last && !fresh.empty() && old_[last - 1] == fresh.back() ) {
            --last;
            fresh.pop_back();
        }
        if ( first < last || !fresh.empty() )
            changes_.push_back( std::move( change ) );
    }

    void hunk( size_t firstChange, size_t lastChange, std::ptrdiff_t &shift, std::string &result ) const
    {
        const size_t begin = changes_[firstChange].first - std::min( changes_[firstChange].first, Context );
        const size_t end = std::min( changes_[lastChange - 1].last + Context, old_.size() );
        std::string lines;
        std::ptrdiff_t grown = 0;
        size_t at = begin;
        for ( size_t i = firstChange; i < lastChange; ++i ) {
            const Change &change = changes_[i];
            for ( ; at < change.first; ++at )
                line( ' ', old_[at], lines );
            for ( ; at < change.last; ++at )
                line( '-', old_[at], lines );
            for ( const std::string_view fresh : change.fresh )
                line( '+', fresh, lines );
            grown += static_cast<std::ptrdiff_t>( change.fresh.size() ) -
                     static_cast<std::ptrdiff_t>( change.last - change.first );
        }
        for ( ; at < end; ++at )
            line( ' ', old_[at], lines );
        const size_t freshBegin = static_cast<size_t>( static_cast<std::ptrdiff_t>( begin ) + shift );
        const size_t freshCount = static_cast<size_t>( static_cast<std::ptrdiff_t>( end - begin ) + grown );
        result += "@@ -" + range( begin, end - begin ) + " +" + range( freshBegin, freshCount ) + " @@\n" + lines;
        shift += grown;
    }
    // From 1; of no lines, the one before them.
    static std::string range( size_t begin, size_t count )
    {
        return std::to_string( count > 0 ? begin + 1 : begin ) + ( count == 1 ? "" : "," + std::to_string( count ) );
    }
    static void line( char mark, std::string_view text, std::string &result )
    {
        result += mark;
        result += text;
        if ( !text.ends_with( '\n' ) )
            result += "\n\\ No newline at end of file\n";
    }

    const std::vector<std::string_view> old_;
    std::vector<Change> changes_;
    std::deque<std::string> texts_; // that the changes' lines stand in
};

} // namespace

std::string editedText( std::string_view text, const std::vector<TextEdit> &edits )
{
    std::string result;
    size_t at = 0;
    for ( const TextEdit &edit : edits ) {
        result += text.substr( at, edit.begin - at );
        result += edit.text;
        at = edit.end;
    }
    return result.append( text.substr( at ) );
}

Lines::Lines( std::string_view text )
{
    for ( size_t at = 0; at < text.size(); ) {
        starts_.push_back( at );
        const size_t feed = text.find( '\n', at );
        at = feed == text.npos ? text.size() : feed + 1;
    }
    starts_.push_back( text.size() );
}

size_t Lines::of( size_t offset ) const
{
    const auto after = std::upper_bound( starts_.begin(), starts_.end(), offset );
    return static_cast<size_t>( after - starts_.begin() ) - 1;
}

std::string unifiedDiff( std::string_view text, const std::vector<TextEdit> &edits, const std::string &name )
{
    return Diff( text, edits ).text( name );
}

} // namespace cs
