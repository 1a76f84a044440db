# Turns a manual of docs/ (Markdown) into the source of a man page (scdoc), so that it is told once.
#
# It knows what the manuals use: the title "name(8) - what it is", headings, definition lists, lists,
# tables (as definitions: the first column is the term), code blocks, `code`, *variable* and **strong**.
# A line of a code block that begins with "oam" gets a prompt.

function fail(text) {
    print FILENAME ":" FNR ": " text > "/dev/stderr"
    failed = 1
    exit 1
}

function escaped(text) {
    gsub(/\\/, "&&", text)
    gsub(/_/, "\\_", text)
    gsub(/\*/, "\\*", text)
    return text
}

# Text outside of code: \001 and \002 stand for marks while stars are read.
function plain(text) {
    gsub(/\\/, "&&", text)
    gsub(/_/, "\\_", text)
    while (match(text, /\*\*[^*]+\*\*/))
        text = substr(text, 1, RSTART - 1) "\001" substr(text, RSTART + 2, RLENGTH - 4) "\001" \
            substr(text, RSTART + RLENGTH)
    while (match(text, /\*[^*]+\*/))
        text = substr(text, 1, RSTART - 1) "\002" substr(text, RSTART + 1, RLENGTH - 2) "\002" \
            substr(text, RSTART + RLENGTH)
    if (index(text, "*")) fail("a star that nothing closes")
    gsub(/\001/, "*", text)
    gsub(/\002/, "_", text)
    return text
}

function inline(text,    pieces, count, i, out) {
    count = split(text, pieces, "`")
    if (count > 0 && count % 2 == 0) fail("code that does not end on its line")
    for (i = 1; i <= count; ++i) out = out (i % 2 ? plain(pieces[i]) : "*" escaped(pieces[i]) "*")
    return out
}

function endCode() {
    if (inCode) print "```"
    inCode = 0
}

function row(text,    cells, count, i, rest) {
    # A bar that stands in code belongs to no table.
    gsub(/\\\|/, "\003", text)
    sub(/^\| */, "", text)
    sub(/ *\|$/, "", text)
    count = split(text, cells, / *\| */)
    for (i = 2; i <= count; ++i) rest = rest (i > 2 && cells[i] != "" ? "; " : "") cells[i]
    gsub(/\003/, "|", cells[1])
    gsub(/\003/, "|", rest)
    print inline(cells[1])
    print "\t" inline(rest)
    print ""
}

FNR == 1 {
    if (!match($0, /^# [a-z.-]+\([1-8]\)/)) fail("no title")
    print substr($0, 3, RLENGTH - 2)
    next
}
/^```/ {
    inFence = !inFence
    print "```"
    next
}
inFence {
    print
    next
}
/^    / && !inList && !inDefinition {
    if (!inCode) print "```"
    inCode = 1
    sub(/^    /, "")
    print ($0 ~ /^oam / ? "$ " : "") $0
    next
}
{
    endCode()
    gsub(/`docs\/oam\.md`/, "oam(1)")
    gsub(/`docs\/oamd\.md`/, "oamd(8)")
}
# A picture.
/^!\[/ { next }

/^$/ {
    inList = inDefinition = rows = 0
    print
    next
}
/^### / {
    print "## " plain(substr($0, 5))
    next
}
/^## / {
    print "# " toupper(plain(substr($0, 4)))
    next
}
/^\|/ {
    # The headings and the line below them are no row.
    if (++rows == 1) print ""
    if (rows > 2) row($0)
    next
}
/^: / {
    inDefinition = 1
    print "\t" inline(substr($0, 3))
    next
}
inDefinition && /^  / {
    print "\t" inline(substr($0, 3))
    next
}
/^- / {
    inList = 1
    print "- " inline(substr($0, 3))
    next
}
inList && /^  / {
    print "  " inline(substr($0, 3))
    next
}
# At the begin of a line these would be a table's.
/^[][|]/ {
    print "\\" inline($0)
    next
}
{ print inline($0) }
END {
    if (!failed) endCode()
    exit failed
}
