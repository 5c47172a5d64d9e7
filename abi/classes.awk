# SPDX-License-Identifier: Apache-2.0
# Reads what `readelf --debug-dump=info` prints of one object file. Prints each class of the library with its size, its
# bases and data members with their places, and its virtual functions with their slots. Before each line are what to sort
# by, the name of the class and two numbers, and a tab after each.

/^ *<[0-9]+><[0-9a-f]+>: Abbrev Number: .*\(DW_TAG_/ {
    split($0, field, /[<>]+/)
    depth = field[2]
    entry = field[3]
    entries[++count] = entry
    enclosing[depth] = entry
    scope[entry] = enclosing[depth - 1]
    tag[entry] = $NF
    gsub(/^\(DW_TAG_|\)$/, "", tag[entry])
    next
}

$2 ~ /^DW_AT_(name|type|byte_size|data_member_location|data_bit_offset|linkage_name|virtuality)/ ||
$2 ~ /^DW_AT_(vtable_elem_location|declaration|artificial)/ {
    attribute = $2
    gsub(/^DW_AT_|:$/, "", attribute)
    value = $0
    sub(/^[^:]*: /, "", value)
    sub(/^\(ind[^)]*\): /, "", value) # Where the string is kept.
    sub(/[ \t]+$/, "", value)
    if (value ~ /^<0x[0-9a-f]+>$/) {
        value = substr(value, 4, length(value) - 4)
    }
    of[entry, attribute] = value
}

function IsClass(entry)
{
    return tag[entry] ~ /^(class|structure|union)_type$/
}

# The name of a type. A pointer, a reference and the like follow what they apply to.
function Name(entry, inner)
{
    if (entry == "") {
        return "void"
    }
    inner = of[entry, "type"]
    if (tag[entry] == "pointer_type") {
        return Name(inner) "*"
    }
    if (tag[entry] == "reference_type") {
        return Name(inner) "&"
    }
    if (tag[entry] == "const_type") {
        return Name(inner) " const"
    }
    if (tag[entry] ~ /^(array|subroutine|ptr_to_member|rvalue_reference|volatile)_type$/) {
        return Name(inner) " " tag[entry]
    }
    inner = (entry, "name") in of ? of[entry, "name"] : "(unnamed)"
    return tag[scope[entry]] ~ /^(namespace|class_type|structure_type|union_type)$/ ? Name(scope[entry]) "::" inner : inner
}

function Print(class, kind, number, text)
{
    printf "%s\t%d\t%d\t%s\n", Name(class), kind, number, text
}

END {
    for (i = 1; i <= count; ++i) {
        entry = entries[i]
        class = IsClass(entry) ? entry : scope[entry]
        if (!IsClass(class) || (class, "declaration") in of ||
            Name(class) !~ /^OHOS::Korvane::Quenlar::PrivacyIndicator::/) {
            continue
        }
        place = of[entry, "data_member_location"]
        if (place !~ /^[0-9]+$/) {
            place = (entry, "data_bit_offset") in of ? of[entry, "data_bit_offset"] / 8 : "virtual"
        }
        type = Name(of[entry, "type"])
        if (entry == class) {
            Print(class, 0, 0, "class " Name(class) ", " of[class, "byte_size"] " bytes")
        } else if (tag[entry] == "inheritance") {
            Print(class, 1, place, "    " place "  base " type)
        } else if (tag[entry] == "member" && (entry, "artificial") in of) {
            Print(class, 1, place, "    " place "  virtual table")
        } else if (tag[entry] == "member") {
            Print(class, 1, place, "    " place "  " type " " of[entry, "name"])
        } else if ((entry, "vtable_elem_location") in of) {
            slot = of[entry, "vtable_elem_location"]
            gsub(/.*: |\)$/, "", slot)
            Print(class, 2, slot, "    slot " slot "  " type " " of[entry, "linkage_name"])
        } else if ((entry, "virtuality") in of && !((entry, "artificial") in of)) {
            # A destructor's two slots are not among what the compiler writes; the others' show where they are.
            Print(class, 3, 0, "    virtual " of[entry, "name"] "()")
        }
    }
}
