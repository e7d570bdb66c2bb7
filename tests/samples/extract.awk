# Takes the C++ samples out of pages in Markdown, with what the pages say that they print.
#
#   awk -v folder=<to> -f extract.awk <page>...
#
# A sample is named by its page and heading. It goes to <name>.inc, and as a program of its own to
# <name>.cpp; what it prints to <name>.expected, where the text after it begins with "It prints" or
# "prints", followed by the words themselves, or by a colon or nothing and a block. Likewise a page
# names a program in examples/ and ends in "It prints" before a block: example_<program>.expected.
# Printed are the names, of programs those that the pages say the output of.

BEGIN {
    announced = "prints:?$|^(It )?prints [^.]*:$"  # the output, as a block that follows
    count = split("algorithm cmath cstdio fstream iostream string vector zvmath/zvmath.h " \
        "zvplatform/streams.h zvsystem/errors.h", headers, " ")
    for (i = 1; i <= count; ++i)
        includes = includes "#include <" headers[i] ">\n"
}

FNR == 1 {
    page = tolower(FILENAME)
    gsub(/.*\/|\.md$/, "", page)
    heading = sample = text = block = ""
}

/^```/ && block == "" {
    finish_text()
    block = /^```cpp/ ? "sample" : text ~ announced ? "output" : "other"
    first = FNR + 1
    code = ""
    next
}
/^```/ {
    if (block == "sample")
        finish_sample()
    else if (block == "output")
        finish_output()
    block = text = ""
    next
}
block != "" { code = code $0 "\n"; next }

/^#/ {
    finish_text()
    heading = /^# / ? "" : "_" name_of($0)
    sample = text = ""
    next
}
/./ { text = text (text == "" ? "" : " ") $0 }

function name_of(title) {
    title = tolower(title)
    gsub(/[^a-z0-9 _-]/, "", title)
    gsub(/[ -]+/, "_", title)
    sub(/^_/, "", title)
    return title
}

function write(file, content) {
    printf "%s", content > (folder "/" file)
    close(folder "/" file)
}

function finish_sample() {
    sample = page heading
    if (++samples[sample] > 1)
        sample = sample "_" samples[sample]
    is_program = code ~ /int main\(/
    if (!is_program) {
        sub(/\n$/, "", code)
        gsub(/\n/, "\n    ", code)  # inside a function: compilers find other indentation misleading
        code = "    " code "\n"
    }
    code = "#line " first " \"" FILENAME "\"\n" code  # the compiler's messages name the page
    write(sample ".inc", code)
    write(sample ".cpp", is_program ? code : includes "\nint main()\n{\n" code "}\n")
    print sample
}

# The words in a text that begins with "It prints `words`" or "It prints words."
function finish_text(    words) {
    words = text
    if (sample == "" || words ~ announced || !sub(/^(It )?prints /, "", words))
        return
    if (!sub(/^`/, "", words))
        sub(/\.( .*)?$/, "", words)
    sub(/`.*/, "", words)
    write(sample ".expected", words "\n")
    sample = ""
}

# The block is the output of the program that the text names last, or of the sample before the text.
function finish_output() {
    if (sub(/.*\]\([.\/]*examples\//, "example_", text)) {
        sub(/\.cpp\).*/, "", text)
        print sample = text
    }
    if (sample != "")
        write(sample ".expected", code)
    sample = ""
}
