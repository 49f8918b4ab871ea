#!/usr/bin/env bash
# Makes the record of every definition.   make_records.sh COMMAND DEFINITIONS RECORDS
set -euo pipefail
mkdir -p "$3"
for definition in "$2"/*.json; do
  "$1" generate "$definition" --record "$3/$(basename "$definition" .json).rec" >"$3/log"
done
