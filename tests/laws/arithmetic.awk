# Reckons every line "EXPRESSION = NUMBER UNIT" in the code blocks of a document again. Words between
# the numbers say what they count and are passed over; k, M, G and T before a unit are powers of 1000.
function fail(why) {
    print FILENAME ":" FNR ": " why ": " $0 > "/dev/stderr"
    wrong++
}
# Products and quotients bind first; no brackets.
function value(text,    sum, product, sign, operation, number) {
    gsub(/,/, "", text)
    sum = 0; product = 1; sign = 1; operation = "*"
    while (match(text, /[0-9.]+|[-+*\/]/)) {
        number = substr(text, RSTART, RLENGTH)
        text = substr(text, RSTART + RLENGTH)
        if (number ~ /[0-9]/) {
            product = operation == "/" ? product / number : product * number
        } else if (number == "+" || number == "-") {
            sum += sign * product
            product = 1; operation = "*"; sign = number == "-" ? -1 : 1
        } else {
            operation = number
        }
    }
    return sum + sign * product
}
/^```/ { inside = !inside; next }
inside && / = / {
    parts = split($0, side, " = ")
    if (parts != 2) { fail("more than one \"=\""); next }
    # A word with a digit or a sign in it would be reckoned with.
    left = side[1]
    gsub(/[A-Za-z][A-Za-z0-9\/_-]*/, "", left)
    told = side[2]
    gsub(/,/, "", told)
    split(told, right, " ")
    power["k"] = 1e3; power["M"] = 1e6; power["G"] = 1e9; power["T"] = 1e12
    unit = substr(right[2], 1, 1)
    scale = length(right[2]) > 1 && unit in power ? power[unit] : 1
    is = value(left); said = right[1] * scale
    checked++
    if (is < said * 0.98 || is > said * 1.02) fail("it is " is)
}
END {
    if (checked < 10) { print "only " checked + 0 " lines were reckoned" > "/dev/stderr"; exit 1 }
    exit wrong > 0
}
