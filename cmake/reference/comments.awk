# Turns the comments of a public header into Doxygen's. A comment stands for all declarations that
# follow it without a blank line: those of a family get it each, and a heading of its first clause.
# The first comment of a file, and one without a declaration, belong to the file. What settings.h
# says in its tables of a form, such as DAL_CML_getS, is in brief what each function of it does.

function sentence(text) {
    return toupper(substr(text, 1, 1)) substr(text, 2)
}

# What stands behind a declaration, or the row for its form in a table.
function brief(declaration) {
    if (match(declaration, /\/\*.*\*\//)) {
        return "@brief " substr(declaration, RSTART + 3, RLENGTH - 6) "\n"
    }
    sub(/\(.*/, "", declaration)
    sub(/.*DAL_CML_/, "", declaration)
    sub(node, "N", declaration)
    sub(setting, "S", declaration)
    if (!(declaration in purpose)) {
        return ""
    }
    return "@brief " sentence(purpose[declaration]) (purpose[declaration] ~ /\.$/ ? "\n" : ".\n")
}

function printFamily(    i) {
    match(comment, /[.:;][ \n]/)
    heading = substr(comment, 1, RSTART - 1)
    gsub(/\n/, " ", heading)
    print "/** @name " heading "\n" sentence(substr(comment, RSTART + 2)) "@{ */"
    setting = declarations[1]
    sub(/\(.*/, "", setting)
    sub(/.*DAL_CML_get/, "", setting)
    node = match(declarations[count], /DAL_CML_list.*s\(/) \
        ? substr(declarations[count], RSTART + 12, RLENGTH - 14) : "no node"
    for (i = 1; i <= count; ++i) {
        print "/** " brief(declarations[i]) "@details " comment "*/\n" declarations[i]
    }
    print "/** @} */"
}

function flush() {
    if (count > 1) {
        printFamily()
    } else if (count == 1) {
        print "/** " comment "*/\n" declarations[1]
    } else if (comment != "") {
        print "/** @file\n" comment "*/"
    }
    comment = ""
    count = 0
}

inComment || /^\/\*/ {
    inComment = !/\*\//
    line = $0
    sub(/^ ?\/?\*+[ \/]?/, "", line)
    sub(/ ?\*\/$/, "", line)
    if (line ~ /^\*/) {
        line = "\\" line  # Doxygen would take that one off, too
    }
    if (/^ \*     DAL_CML_/) {
        form = substr($2, 9)
        purpose[form] = substr(line, index(line, $3))
    } else if (/^ \*          /) {
        purpose[form] = purpose[form] substr(line, match(line, / [^ ]/))
    } else if (gsub(/----/, "", line)) {
        line = "@par" line
    } else {
        gsub(/(DAL_|wifi_)?(CML|scan)_[a-z][A-Za-z0-9_]*/, "#&", line)
    }
    comment = comment (comment line == "" ? "" : line "\n")
    next
}

# The fields of a record: each has its comment behind it, or shares the one above it.
inRecord {
    if (/^ *\/\*/) {
        note = $0
        sub(/\/\*/, "/**", note)
    } else {
        if (!sub(/\/\*/, "/**<") && /^ .*;$/ && note != "") {
            print note
        }
        print
    }
    inRecord = !/^}/
    next
}
/\{$/ && /^(typedef|enum)/ {
    print "/** " comment "*/\n" $0
    comment = note = ""
    inRecord = 1
    next
}

/^$|^[#}]|^extern "C"/ {
    flush()
    print
    next
}
{
    if (partial) {
        declarations[count] = declarations[count] "\n" $0
    } else {
        declarations[++count] = $0
    }
    partial = !/;/
}
