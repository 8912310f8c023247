# Makes the tables of docs/performance.md from the output of the benchmarks. Times are medians, in nanoseconds.

def times($series):
    [.[0].benchmarks | sort_by(.family_index)[]
     | select(.aggregate_name == "median")
     | (.run_name | split("/")) as [$name, $rule, $byWhom]
     | select($name == $series)
     | {rule: $rule, byWhom: $byWhom, ns: (1e9 / .items_per_second)}]
    | reduce .[] as $time ([];
        (map(.rule) | index($time.rule)) as $at
        | if $at == null then . + [{rule: $time.rule, ns: {($time.byWhom): $time.ns}}]
          else .[$at].ns[$time.byWhom] = $time.ns end);

def decimals($count): pow(10; $count) as $unit
    | (. * $unit | round | tostring) as $digits
    | if $count == 0 then $digits
      else (("0" * ([0, $count + 1 - ($digits | length)] | max)) // "") + $digits | .[:-$count] + "." + .[-$count:] end;

# Small numbers get more digits, so that a ratio near 1 can be distinguished from 1.
def short: decimals(if . < 2 then 2 elif . < 9.95 then 1 else 0 end);

def row: "| " + join(" | ") + " |";

def evaluationTable($series):
    (["rule", "library, ns", "library : hand-written", "library : library untraced", "substitution : library",
      "muparser : library", "Lua 5.4 : library", "LuaJIT : library"] | row),
    "|---|--:|--:|--:|--:|--:|--:|--:|",
    (times($series)[]
     | .ns as $ns
     | [.rule, ($ns.library | short)]
       + ([$ns.library / $ns."hand-written", $ns.library / $ns.untraced, $ns.substitution / $ns.library,
           $ns.muparser / $ns.library, $ns.lua54 / $ns.library, $ns.luajit / $ns.library] | map(short))
     | row);

def compiledTable($series):
    (["rule", "compiled, ns", "compiled : hand-written", "library : compiled", "muparser : compiled",
      "Lua 5.4 : compiled", "LuaJIT : compiled"] | row),
    "|---|--:|--:|--:|--:|--:|--:|",
    (times($series)[]
     | .ns as $ns
     | [.rule, ($ns.compiled | short)]
       + ([$ns.compiled / $ns."hand-written", $ns.library / $ns.compiled, $ns.muparser / $ns.compiled,
           $ns.lua54 / $ns.compiled, $ns.luajit / $ns.compiled] | map(short))
     | row);

def seriesTable($length):
    (["rule", "compiled, ns per sample", "compiled : sum", "hand-written : compiled", "LuaJIT : compiled"] | row),
    "|---|--:|--:|--:|--:|",
    (times($length)[]
     | .ns as $ns
     | [.rule, ($ns.library | decimals(2)), ($ns.library / $ns.sum | short)]
       + ([$ns."hand-written", $ns.luajit] | map(if . == null then "" else . / $ns.library | short end))
     | row);

def parsingTable:
    (["rule", "library, ns", "muparser : library", "Lua 5.4 : library", "LuaJIT : library"] | row),
    "|---|--:|--:|--:|--:|",
    (times("parse")[]
     | .ns as $ns
     | [.rule, ($ns.library | short)]
       + ([$ns.muparser / $ns.library, $ns.lua54 / $ns.library, $ns.luajit / $ns.library] | map(short))
     | row);

def codecTable($series; $limit):
    ($limit | map({key: .rule, value: .ns.memcpy}) | from_entries) as $copied
    | (["values", "library, ns per value", "protobuf : library", "nanopb : library", "msgpack-cxx : library",
        "net-snmp : library", "library : memcpy"] | row),
      "|--:|--:|--:|--:|--:|--:|--:|",
      (times($series)[]
       | .rule as $rule
       | .ns as $ns
       | [$rule, ($ns.library | short)]
         + ([$ns.protobuf / $ns.library, $ns.nanopb / $ns.library, $ns.msgpack / $ns.library,
             $ns.netsnmp / $ns.library, $ns.library / $copied[$rule]] | map(short))
       | row);

# The peers' own form compared with the library, which includes the conversion of the values.
def ownFormTable($series):
    (times($series) | map({key: .rule, value: .ns.library}) | from_entries) as $library
    | (["values", "protobuf : library", "nanopb : library", "msgpack-cxx : library"] | row),
      "|--:|--:|--:|--:|",
      (times($series + " own form")[]
       | .rule as $rule
       | .ns as $ns
       | [$rule] + ([$ns.protobuf, $ns.nanopb, $ns.msgpack] | map(. / $library[$rule] | short))
       | row);

def sideBySideTable($what; $bare):
    ([$what, "microseconds", "\($what) : \($bare)"] | row),
    "|---|--:|--:|",
    (.[] | ["`\(.name)`", (.ns / 1000 | short), (.ratio | short)] | row);

def startUpTable:
    (["program", "loaded objects", "microseconds", "program : empty program"] | row),
    "|---|--:|--:|--:|",
    (.[] | [.name, (.objects | tostring), (.us | short), (.ratio | short)] | row);

"Measured on \($machine), built by \($compiler).",
if $part == "rules" then
    "", "### Evaluation, samples whose verdict changes", "", evaluationTable("changing"),
    "", "### Evaluation, samples whose verdict stays", "", evaluationTable("steady"),
    "", "### Compiled, samples whose verdict changes", "", compiledTable("changing"),
    "", "### Compiled, samples whose verdict stays", "", compiledTable("steady"),
    "", "### Parsing", "", parsingTable
elif $part == "series" then
    "", "### 4,096 samples", "", seriesTable("4096 samples"),
    "", "### 16,777,216 samples", "", seriesTable("16777216 samples")
elif $part == "codec" then
    "", "### Encoding", "", codecTable("encode"; times("copy")),
    "", "### Decoding", "", codecTable("decode"; times("copy")),
    "", "### Encoding the peers' own form", "", ownFormTable("encode"),
    "", "### Decoding into the peers' own form", "", ownFormTable("decode")
elif $part == "ports" then
    "", sideBySideTable("operation"; "bare calls")
elif $part == "roundtrip" then
    "", sideBySideTable("call"; "bare round trip")
else
    "", startUpTable
end
