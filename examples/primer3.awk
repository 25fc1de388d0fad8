# Turns a report with bases and flanks (--printRepeatSeqMode 1, --flanking) into input for primer3_core: one target a
# repeat, named after its sequence and first position.
/^>/ { name = substr($1, 2) }
/ bp \|/ { id = name "_" $2 }
/^[ACGTN]*:[ACGTN]+:[ACGTN]*$/ {
  split($0, part, ":")
  print "SEQUENCE_ID=" id
  print "SEQUENCE_TEMPLATE=" part[1] part[2] part[3]
  print "SEQUENCE_TARGET=" length(part[1]) "," length(part[2])
  print "="
}
