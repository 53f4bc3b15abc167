#!/usr/bin/env perl
# Says what the given Markdown files name that is not there: files and headings that they link to, and files in
# backticks, which may lack their extension.
use strict;
use warnings;
use File::Basename 'dirname';

sub slurp { open my $in, "<:utf8", $_[0] or die "$_[0]: $!\n"; local $/; return scalar <$in> }

# As code hosts make them; a table's own anchors are ids.
sub anchors {
  my ($text) = @_;
  my %anchors = map { $_ => 1 } $text =~ /<a (?:id|name)="([^"]+)">/g;
  $text =~ s/^```.*?^```//gms;
  for my $heading ($text =~ /^#+ +(.+?) *$/gm) {
    (my $slug = lc $heading) =~ s/[^\w\- ]//g;
    $slug =~ tr/ /-/;
    $anchors{$slug} = 1;
  }
  return \%anchors;
}

for my $file (@ARGV) {
  my $text = slurp($file);
  (my $prose = $text) =~ s/^```.*?^```//gms;
  while ($prose =~ /\]\(([^)\s#]*)(?:#([^)\s]+))?\)/g) {
    my ($target, $anchor) = ($1, $2);
    next if $target =~ /^[a-z]+:/;
    my $path = $target eq '' ? $file : dirname($file) . "/$target";
    if (!-e $path) {
      print "$file: there is no $target\n";
    } elsif (defined $anchor && $path =~ /\.md$/ && !anchors(slurp($path))->{$anchor}) {
      print "$file: $target has no heading #$anchor\n";
    }
  }
  while ($prose =~ m{`((?:host|context|pane|platform|tests|scripts|cmake|docs|bench|resources|samples|po)/[\w./*-]+)`}g) {
    my $path = $1;
    print "$file: there is no $path\n" unless grep { -e } glob "$path $path.*";
  }
}
