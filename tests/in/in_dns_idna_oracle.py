"""Expected results of nameprep, ToASCII and ToUnicode by Python's standard library, one a line.

    KIND SOURCE RESULT      KIND: P nameprep, A ToASCII, U ToUnicode; texts: code points in hexadecimal, "." between
                            them, "~" when empty; RESULT "-": refused. P comes for every code point; the lines of those
                            that nameprep returns as they are, are left out. N: a code point on which its neighbours
                            depend, so that a look-up of single ones must refuse it.
"""
import encodings.idna
import random
import stringprep
import sys
from unicodedata import ucd_3_2_0 as ucd

# RFC 3454's table B.2 is Unicode 3.2's, in which these capitals had no small letters yet. Python knows them: its
# own table follows its present Unicode, or since CVE-2026-17084 RFC 3454.
LATER_SMALL_LETTERS = [
    0x4C0,  # Cyrillic palochka; U+04CF since Unicode 5.0
    *range(0x10A0, 0x10C6),  # Georgian; U+2D00.. since 4.1
    *range(0x13A0, 0x13F5),  # Cherokee; U+AB70.. since 8.0
    0x2132,  # turned F; U+214E since 5.0
    0x2183,  # reversed C; U+2184 since 5.0
]
python_map = stringprep.map_table_b3


def assigned(c):
    return not stringprep.in_table_a1(c)


def later(c):
    return any(not assigned(small) for small in c.lower())


def map_3_2(c):
    # What Unicode 3.2 does not assign has no row in its table.
    return c if not assigned(c) or ord(c) in LATER_SMALL_LETTERS else python_map(c)


scalars = [chr(c) for c in range(0x110000) if not 0xD800 <= c <= 0xDFFF]
assert [ord(c) for c in scalars if assigned(c) and later(c)] == LATER_SMALL_LETTERS
stringprep.map_table_b3 = map_3_2


def nameprep(text):
    try:
        return encodings.idna.nameprep(text)
    except UnicodeError:
        return None


def to_ascii(label):
    try:
        return encodings.idna.ToASCII(label).decode("ascii")
    except UnicodeError:
        return None


def to_unicode(label):
    """RFC 3490, section 4.2; Python's own refuses where the standard returns the label, and knows "xn--" only."""
    prepared = label if label.isascii() else nameprep(label)
    if len(label) > 63 or prepared[:4].lower() != "xn--":
        return label
    try:
        decoded = prepared[4:].encode("ascii").decode("punycode")
    except UnicodeError:
        return label
    back = to_ascii(decoded)
    return decoded if back and back.lower() == prepared.lower() else label


def show(text):
    return "-" if text is None else ".".join(f"{ord(c):x}" for c in text) or "~"


def line(kind, source, result):
    sys.stdout.write(f"{kind} {show(source)} {show(result)}\n")


for c in scalars:
    prepared = nameprep(c)
    if prepared != c:
        line("P", c, prepared)

joined = {0x1161 + i for i in range(21)} | {0x11A8 + i for i in range(27)}  # Hangul, which composes by rule
for c in scalars:
    if not ucd.decomposition(c).startswith("<"):
        joined.update(int(part, 16) for part in ucd.decomposition(c).split()[1:])
for c in scalars:
    if ord(c) in joined or ucd.combining(c) or stringprep.in_table_d1(c):
        line("N", c, None)

some = random.Random(1)
known = [c for c in scalars if assigned(c) and not stringprep.in_table_c3(c)]
active = [c for c in known if nameprep(c) != c or ucd.combining(c) or stringprep.in_table_d1(c)]
pools = [known, active, scalars[:0x250], [c for c in known if ucd.combining(c)], list("xXnN-azAZ09")]
labels = ["a" + c for c in active + known[::16]]
for _ in range(10000):
    pool = some.sample(pools, 2)
    labels.append("".join(some.choice(some.choice(pool)) for _ in range(some.choice([1, 2, 3, 5, 8, 20]))))
for label in labels:
    ascii_form = to_ascii(label)
    line("A", label, ascii_form)
    if ascii_form:
        line("U", label, to_unicode(label))
        mixed = "".join(some.choice([c, c.upper()]) for c in ascii_form)
        line("U", mixed, to_unicode(mixed))
