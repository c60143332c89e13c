#!/usr/bin/env python3
"""Builds the built-in US-English dictionary of KvRichTextBox.

Reads Debian's SCOWL word lists (package `scowl`) and the MyThes thesaurus (package
`mythes-en-us`), plus the two small lists beside this script, and writes the dictionary
resources into src/kvrichtextbox/resources/dictionary/:

  plain/A.txt .. plain/Z.txt      resources "A".."Z": bare words, one a line
  lookup/A.txt .. lookup/Z.txt    resources "A$".."Z$": "$word<" for the lower-case words
  synonyms/A.txt .. synonyms/Z.txt resources "ASYN".."ZSYN": "$word< syn syn >"
  list101.txt                     resource 101: "$Word<" for every capitalised entry
  dots.txt                        resource "DOTS": one pattern line of the abbreviations
  dots2.txt                       resource "DOTS2": "$abbreviation<" lines
  zero.bin                        resource "ZERO": 8,370 bytes 0xD8
  dictionary.qrc                  the Qt resource file that names them

Every file is Windows-1252 with CR LF line ends (except DOTS and ZERO, which have no line
end), its lines in ascending byte order. Every entry with an apostrophe is written twice, with
"'" and with the typographic apostrophe (byte 0x92).

Usage: python3 tools/dictionary/generate.py [--scowl DIR] [--mythes FILE] [--out DIR]
"""

import argparse
import os
import re
import sys
from collections import Counter

HERE = os.path.dirname(os.path.abspath(__file__))
REPO = os.path.normpath(os.path.join(HERE, '..', '..'))

# SCOWL size levels: up to LOWER_ALL every lower-case word is taken; from the next level up to
# LOWER_COMMON only words the thesaurus knows, so that the lists stay near 80,000 entries.
LOWER_ALL = 40
LOWER_COMMON = 50
CAPITAL_ALL = 40
CAPITAL_COMMON = 50
CAPITAL_TARGET = 2225       # about this many capitalised entries in the letter lists
MAX_SYNONYMS = 6
SYNONYM_HEADS = 70   # SCOWL level of the thesaurus' own head words
ZERO_LENGTH = 8370
TYPOGRAPHIC_APOSTROPHE = '\u2019'   # byte 0x92 in Windows-1252

SIZES = [10, 20, 35, 40, 50, 55, 60, 70, 80, 95]
LOWER_CATEGORIES = ['english-words', 'american-words', 'english-contractions', 'variant_1-words']
CAPITAL_CATEGORIES = ['english-upper', 'american-upper', 'english-proper-names',
                      'american-proper-names', 'english-abbreviations', 'american-abbreviations']
SYNONYM_NOTES = re.compile(r' \((generic|similar|related) term\)$')


def read_scowl(folder, categories, top):
    words = set()
    for size in SIZES:
        if size > top:
            break
        for category in categories:
            path = os.path.join(folder, f'{category}.{size}')
            if os.path.exists(path):
                with open(path, encoding='utf-8') as f:
                    words.update(line.strip() for line in f)
    return {w for w in words if usable(w)}


def read_scowl_level(folder, categories, size):
    return read_scowl(folder, categories, size) - read_scowl(folder, categories, previous_size(size))


def previous_size(size):
    i = SIZES.index(size)
    return SIZES[i - 1] if i > 0 else 0


def usable(word):
    if not word or any(c in word for c in ' \t$<>|\\"'):
        return False
    try:
        word.encode('cp1252')
    except UnicodeEncodeError:
        return False
    return True


def read_thesaurus(path):
    """Returns (meanings by head word, head words whose meanings name a term, how often each
    term occurs)."""
    meanings = {}
    related = {}
    frequency = Counter()
    head = None
    with open(path, encoding='utf-8', errors='replace') as f:
        first = True
        for line in f:
            line = line.rstrip('\n')
            if first:
                first = False   # the encoding line
                continue
            if line.startswith('('):
                terms = []
                for term in line.split('|')[1:]:
                    if term.endswith('(antonym)'):
                        continue
                    term = SYNONYM_NOTES.sub('', term)
                    terms.append(term)
                    frequency[term] += 1
                meanings.setdefault(head, []).append(terms)
                for term in terms:
                    if term != head:
                        related.setdefault(term.lower(), []).append(head)
            elif '|' in line:
                head = line.split('|')[0]
    return meanings, related, frequency


def read_list(path):
    with open(path, encoding='utf-8') as f:
        return [l.strip() for l in f if l.strip() and not l.startswith('#')]


def with_both_apostrophes(words):
    out = set()
    for w in words:
        out.add(w)
        if "'" in w:
            out.add(w.replace("'", TYPOGRAPHIC_APOSTROPHE))
    return out


def initial(word):
    c = word[0].upper()
    return c if 'A' <= c <= 'Z' else None


def write_lines(path, lines):
    data = b''.join(l.encode('cp1252') + b'\r\n' for l in sorted(lines, key=lambda l: l.encode('cp1252')))
    write_bytes(path, data)


def write_bytes(path, data):
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, 'wb') as f:
        f.write(data)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument('--scowl', default='/usr/share/dict/scowl')
    parser.add_argument('--mythes', default='/usr/share/mythes/th_en_US_v2.dat')
    parser.add_argument('--out', default=os.path.join(REPO, 'src', 'kvrichtextbox', 'resources', 'dictionary'))
    args = parser.parse_args()

    meanings, related, frequency = read_thesaurus(args.mythes)
    abbreviations = read_list(os.path.join(HERE, 'abbreviations.txt'))
    supplement = [l.split('|') for l in read_list(os.path.join(HERE, 'supplement.txt'))]
    if len(abbreviations) != 157 or len(set(abbreviations)) != 157:
        sys.exit('abbreviations.txt must hold 157 different abbreviations')

    # Lower-case words: every common word, then the less common ones that the thesaurus knows.
    lower = {w for w in read_scowl(args.scowl, LOWER_CATEGORIES, LOWER_ALL) if w[0].islower()}
    lower |= {w for w in read_scowl_level(args.scowl, LOWER_CATEGORIES, LOWER_COMMON)
              if w[0].islower() and "'" not in w and w in meanings}

    # Capitalised words and acronyms: the common ones, then the best known of the next level
    # (those the thesaurus names most often), without possessives.
    capitals = {w for w in read_scowl(args.scowl, CAPITAL_CATEGORIES, CAPITAL_ALL)
                if not w[0].islower() and "'" not in w}
    more = sorted((w for w in read_scowl_level(args.scowl, CAPITAL_CATEGORIES, CAPITAL_COMMON)
                   if not w[0].islower() and "'" not in w and frequency[w] > 0 and w not in capitals),
                  key=lambda w: (-frequency[w], w))

    for entry in supplement:
        (lower if entry[0][0].islower() else capitals).add(entry[0])
    for a in abbreviations:
        (lower if a[0].islower() else capitals).add(a)
    lower_cased_capitals = {w for w in capitals if w.lower() != w}
    budget = CAPITAL_TARGET - len(with_both_apostrophes(lower_cased_capitals))
    capitals |= set(more[:max(0, budget)])

    lower = with_both_apostrophes(lower)
    capitals = with_both_apostrophes(capitals)
    lower = {w for w in lower if w == w.lower()}
    capitals = {w for w in capitals if w != w.lower()}

    plain = {chr(c): set() for c in range(ord('A'), ord('Z') + 1)}
    lookup = {chr(c): set() for c in range(ord('A'), ord('Z') + 1)}
    for w in capitals:
        if initial(w):
            plain[initial(w)].add(w)
    for w in lower:
        if initial(w):
            plain[initial(w)].add(w)
            lookup[initial(w)].add(f'${w}<')

    # Synonyms: single words that are themselves in the dictionary, in the thesaurus' order.
    known = lower | capitals
    synonym_lines = {chr(c): set() for c in range(ord('A'), ord('Z') + 1)}
    extra = {e[0]: e[1:] for e in supplement if len(e) > 1}
    # Head words: our own lower-case words, and the thesaurus' words of the next SCOWL levels.
    heads = lower | (read_scowl(args.scowl, LOWER_CATEGORIES, SYNONYM_HEADS) & set(meanings))
    heads = {w for w in heads if w[0].islower()}
    for head in sorted(w for w in heads if "'" not in w and TYPOGRAPHIC_APOSTROPHE not in w and '.' not in w):
        found = []
        for term in (extra.get(head, []) + [t for m in meanings.get(head, []) for t in m]
                     + related.get(head, [])):
            if (' ' in term or term.lower() == head or not usable(term) or term in found
                    or "'" in term or '.' in term):
                continue
            found.append(term)
            if len(found) == MAX_SYNONYMS:
                break
        if found and initial(head):
            synonym_lines[initial(head)].add(f'${head}< {" ".join(found)} >')

    out = args.out
    qrc = ['<!DOCTYPE RCC>', '<RCC version="1.0">', '<qresource prefix="/usdictionary">']
    for letter in plain:
        write_lines(os.path.join(out, 'plain', f'{letter}.txt'), plain[letter])
        write_lines(os.path.join(out, 'lookup', f'{letter}.txt'), lookup[letter])
        write_lines(os.path.join(out, 'synonyms', f'{letter}.txt'), synonym_lines[letter])
        qrc.append(f'    <file alias="{letter}">plain/{letter}.txt</file>')
        qrc.append(f'    <file alias="{letter}$">lookup/{letter}.txt</file>')
        qrc.append(f'    <file alias="{letter}SYN">synonyms/{letter}.txt</file>')
    write_lines(os.path.join(out, 'list101.txt'), {f'${w}<' for w in capitals})
    # The pattern lists the abbreviations by initial, each initial's capitalised ones first,
    # as the letter lists do: "(A\.D\.|Abbr\.|Acad\.|" ... "|Yr\.|yd\.)".
    ordered = sorted(abbreviations, key=lambda a: (a[0].lower(), a.encode('cp1252')))
    write_bytes(os.path.join(out, 'dots.txt'),
                ('(' + '|'.join(a.replace('.', '\\.') for a in ordered) + ')').encode('cp1252'))
    write_lines(os.path.join(out, 'dots2.txt'), {f'${a}<' for a in abbreviations})
    write_bytes(os.path.join(out, 'zero.bin'), b'\xd8' * ZERO_LENGTH)
    qrc.append('    <file alias="101">list101.txt</file>')
    qrc.append('    <file alias="DOTS">dots.txt</file>')
    qrc.append('    <file alias="DOTS2">dots2.txt</file>')
    qrc.append('    <file alias="ZERO">zero.bin</file>')
    qrc += ['</qresource>', '</RCC>', '']
    write_bytes(os.path.join(out, 'dictionary.qrc'), '\n'.join(qrc).encode('ascii'))

    print('plain entries:   ', sum(len(s) for s in plain.values()),
          ' '.join(f'{k} {len(v)}' for k, v in plain.items()))
    print('lookup entries:  ', sum(len(s) for s in lookup.values()))
    print('synonym lines:   ', sum(len(s) for s in synonym_lines.values()))
    print('list 101 entries:', len(capitals),
          '(not under A-Z:', ' '.join(sorted(w for w in capitals if not initial(w))) + ')')
    print('abbreviations:   ', len(abbreviations))


if __name__ == '__main__':
    main()
