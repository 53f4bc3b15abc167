#!/usr/bin/env perl
# Prints each row and each point of the named documents that names no test, and each test there that does not exist.
#   scripts/untested.pl DOCUMENT... <TESTS
# TESTS: Suite.Name, one a line. A statement names "Suite.Name", "Suite.*", "Suite.NameThatBegins…" or `scripts/...`, or
# says "the same", for the tests of the row above. Only the sections in %is_promise are read.
use strict;
use warnings;

my %is_promise = ("Guarantees" => 1, "What the page does not report" => 1, "The commands" => 1, "Who can write what" => 1,
                  "What the host does about it" => 1, "What it does not do" => 1);
chomp(my @tests = <STDIN>);
die "no tests\n" unless @tests;

sub examine {
  my ($place, $statement) = @_;
  my $is_tested = $statement =~ /\bthe same\b/;
  while ($statement =~ /`(scripts\/\w+)/g) {
    -e $1 ? ($is_tested = 1) : print "$place: there is no $1\n";
  }
  while ($statement =~ /\b([A-Z]\w+\.|fault_sweep\.)([A-Z]\w+|\*)/ga) {
    my ($suite, $name) = ($1, $2);
    my $rest = $name eq "*" || substr($statement, pos($statement)) =~ /^…/ ? ".*" : "";
    my $pattern = quotemeta($suite . ($name eq "*" ? "" : $name)) . $rest;
    (grep { /^$pattern$/ } @tests) ? ($is_tested = 1) : print "$place: there is no test $suite$name\n";
  }
  print "$place: names no test: " . substr($statement, 0, 70) . "\n" unless $is_tested;
}

for my $document (@ARGV) {
  open(my $file, "<", $document) or die "$document: $!\n";
  my ($section, $is_body, $place, $point) = ("", 0, "", "");
  while (my $line = <$file>) {
    if ($point && $line !~ /^  \S/) {  # the point has ended
      examine($place, $point);
      $point = "";
    }
    $section = $1 if $line =~ /^## (.*)/;
    $is_body = $line =~ /^\|/ && ($is_body || $line =~ /^\|-/);
    next unless $is_promise{$section};
    examine("$document:$.", $line) if $is_body && $line !~ /^\|-/;
    ($place, $point) = ("$document:$.", $line) if $line =~ /^- /;
    $point .= $line if $point && $line =~ /^  /;
  }
  examine($place, $point) if $point;
}
