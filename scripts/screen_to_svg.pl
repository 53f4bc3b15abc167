#!/usr/bin/env perl
# Draws what a terminal shows as an SVG. Reads the screen as "tmux capture-pane -p -e" gives it, with its colours.
#   screen_to_svg.pl COLUMNS ROWS <screen >picture.svg
use strict;
use warnings;
use utf8;
use open qw(:std :encoding(UTF-8));

my ($columns, $rows) = @ARGV;
my ($cell_width, $cell_height, $margin, $bar) = (8.4, 19, 14, 30);    # of the terminal's window, in pixels
my ($paper, $ink) = ('#16181d', '#d7dae0');

# The colours with a name of their own, then the cube, then the greys: as terminals of 256 colours have them.
no warnings 'qw';    # a colour begins with #
my @colours = qw(#000000 #cd3131 #0dbc79 #e5e510 #2472c8 #bc3fbc #11a8cd #e5e5e5
  #666666 #f14c4c #23d18b #f5f543 #3b8eea #d670d6 #29b8db #ffffff);
for my $number (16 .. 231) {
    my @part = map { $_ ? 55 + 40 * $_ : 0 } int(($number - 16) / 36), int(($number - 16) / 6) % 6, ($number - 16) % 6;
    push @colours, sprintf '#%02x%02x%02x', @part;
}
push @colours, sprintf '#%02x%02x%02x', (8 + 10 * $_) x 3 for 0 .. 23;

my %look = ();

sub take_codes {
    my @codes = split /;/, shift || '0';
    while (defined(my $code = shift @codes)) {
        if    ($code == 0)  { %look = () }
        elsif ($code == 1)  { $look{bold} = 1 }
        elsif ($code == 2)  { $look{dim} = 1 }
        elsif ($code == 4)  { $look{line} = 1 }
        elsif ($code == 7)  { $look{turned} = 1 }
        elsif ($code == 22) { delete @look{qw(bold dim)} }
        elsif ($code == 24) { delete $look{line} }
        elsif ($code == 27) { delete $look{turned} }
        elsif ($code == 39) { delete $look{ink} }
        elsif ($code == 49) { delete $look{paper} }
        elsif ($code == 38 || $code == 48) {
            my (undef, $number) = splice @codes, 0, 2;    # after a 5
            $look{$code == 38 ? 'ink' : 'paper'} = $colours[$number];
        }
        elsif ($code >= 30 && $code <= 37) { $look{ink}   = $colours[$code - 30] }
        elsif ($code >= 40 && $code <= 47) { $look{paper} = $colours[$code - 40] }
    }
}

sub escaped {
    my $text = shift;
    my %names = ('&' => '&amp;', '<' => '&lt;', '>' => '&gt;');
    $text =~ s/([&<>])/$names{$1}/g;
    return $text;
}

# One run of text in one look, from a column on. Its length is set, so that any font keeps to the cells.
sub drawn {
    my ($text, $column, $row) = @_;
    my $cells = length $text;
    my ($x, $y, $width) = ($margin + $column * $cell_width, $bar + $margin + $row * $cell_height, $cells * $cell_width);
    my ($own_ink, $own_paper) = ($look{ink} // $ink, $look{paper});
    ($own_ink, $own_paper) = ($own_paper // $paper, $own_ink) if $look{turned};
    my $svg = '';
    $svg .= sprintf qq(<rect x="%.1f" y="%.1f" width="%.1f" height="%d" fill="%s"/>\n), $x, $y, $width, $cell_height,
      $own_paper
      if $own_paper;
    return $svg if $text =~ /^ *$/;
    $svg .= sprintf qq(<text x="%.1f" y="%.1f" textLength="%.1f" fill="%s"%s%s%s>%s</text>\n), $x, $y + 14, $width,
      $own_ink, $look{bold} ? ' font-weight="bold"' : '', $look{dim} ? ' opacity="0.6"' : '',
      $look{line} ? ' text-decoration="underline"' : '', escaped($text);
    return $svg;
}

my $body = '';
my $row  = 0;
while (my $line = <STDIN>) {
    chomp $line;
    my $column = 0;
    while ($line =~ /\G(?:\e\[([0-9;]*)m|(\e.)|([^\e]+))/g) {
        if (defined $1) { take_codes($1) }
        elsif (defined $3) {
            # Gaps of blanks part the texts, so that each begins where its first letter stands.
            for my $text (split /( {2,})/, $3) {
                $body .= drawn($text, $column, $row) if length $text;
                $column += length $text;
            }
        }
    }
    $row++;
}

my ($width, $height) = (2 * $margin + $columns * $cell_width, $bar + 2 * $margin + $rows * $cell_height);
printf <<'SVG', $width, $height, $width, $height, $paper, $bar, $body;
<svg xmlns="http://www.w3.org/2000/svg" width="%d" height="%d" viewBox="0 0 %d %d">
<rect width="100%%" height="100%%" rx="9" fill="%s"/>
<g fill="#3a3f4b"><circle cx="20" cy="18" r="6"/><circle cx="40" cy="18" r="6"/><circle cx="60" cy="18" r="6"/></g>
<path d="M0 %d.5H4000" stroke="#ffffff" stroke-opacity="0.07"/>
<g font-family="'DejaVu Sans Mono', Menlo, Consolas, monospace" font-size="14" xml:space="preserve">
%s</g>
</svg>
SVG
