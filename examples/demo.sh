#!/bin/bash
# The command line tool on the shipped measurements, from an empty database to the first answers.
# Run from the root of the tree with the directory of the `dbapi` command in PATH: `./setup demo` does both.
# Where the Python package is in PYTHONPATH, it is shown, too. It writes into demo/ only, which each run deletes first.
set -euo pipefail
cd "$(dirname "$0")/.."

bold='' plain=''
if [ -t 1 ] && [ -z "${NO_COLOR:-}" ]; then bold=$'\e[1m' plain=$'\e[0m'; fi

# Prints a comment ($1), shows the command line ($2) as one would type it, and runs it.
show() {
    printf '\n%s\n%s$ %s%s\n' "# $1" "$bold" "$2" "$plain"
    eval "$2"
}

rm -rf demo
mkdir -p demo/connections
export VANTO_DB_CONNECTIONS_DIRECTORY=$PWD/demo/connections

show 'Store a connection under a name; the SQLite file is created if there is none.' \
    'dbapi connection add demo --sqlite demo/measurements.db'
show 'Read the shipped sweeps of transistors and diodes into it.' \
    'dbapi import demo examples/measurements'

show 'What is in it, at a glance?' \
    'dbapi info demo | head -n 18'

show 'Which devices are 5 to 10 um wide and at most 0.15 um long? Numbers are in engineering notation.' \
    "dbapi values demo '\$DEVNAME' W L -q 'W=[5u,10u];L<=0.15u' --distinct --format table"

sweep='$DEVNAME=nfet_01v8_w7u_l0p15u_m1;$SUBSITE=8434;$DEVID=10_11;IND.VD=0.1;IND.VB=0;IND.VG=[0.5,0.8]'
show 'One sweep, gate voltage and drain current side by side: the points of a transistor around its threshold.' \
    "dbapi values demo IND.VG OUTD.ID -q '$sweep' --format table"
show 'Which devices carry more than 10 mA?' \
    "dbapi values demo '\$DEVNAME' ID_absmax -q 'ID_absmax>10m' --distinct --format table"

show 'What is there to ask for? Each key of devices, how many have it, and between which numbers.' \
    'dbapi keys demo device --format table'
show 'A picture says more: drain current over gate voltage, a curve for each drain and bulk voltage.' \
    "dbapi values demo IND.VG OUTD.ID -q '\$DEVNAME=nfet_01v8_w0p36u_l0p15u_m1' --plot demo/family.svg"

file=nfet_01v8_w7u_l0p15u_m1__8434_10_11__D1__IDVG.csv
setup='$DEVNAME=nfet_01v8_w7u_l0p15u_m1;$SUBSITE=8434;$DEVID=10_11;$SETNAME=IDVG'
show 'A file that is imported again supersedes its older self ...' \
    "dbapi import demo examples/measurements/$file"
show '... so that a question finds the latest measurement only ...' \
    "dbapi values demo '\$DEVNAME' '\$MEASDBID' '\$MEASTIME' -q '$setup' --format table"
show '... unless it asks for all of them. Nothing is ever overwritten.' \
    "dbapi values demo '\$DEVNAME' '\$MEASDBID' '\$MEASTIME' -q 'ALLDATA: $setup' --format table"

if python3=$(command -v /usr/bin/python3) && "$python3" -c 'import dbapi.connections' 2>/dev/null; then
    show 'The same in Python, as NumPy arrays: the widths, and the largest current of each.' \
        "$python3 examples/first_steps.py"
fi

cat <<'END'

The database stays in demo/measurements.db. To go on asking:
  export VANTO_DB_CONNECTIONS_DIRECTORY=$PWD/demo/connections PATH=$PWD/build/release/tools/dbapi:$PATH
  source <(dbapi completion bash)
  dbapi keys demo device
END
