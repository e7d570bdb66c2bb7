# Draws <folder>/special_functions_validity.png from what bench/special_functions_accuracy.py wrote:
#   gnuplot -e "folder='build/accuracy'" docs/plots/special_functions_validity.gp

data = folder.'/special_functions_validity.dat'
set terminal pngcairo size 900,560 font 'DejaVu Sans,10'
set output folder.'/special_functions_validity.png'

# The colours are those of Okabe and Ito, which colour-blind people can tell apart.
set palette maxcolors 7 defined (0 '#0072B2', 1 '#56B4E9', 2 '#009E73', 3 '#F0E442', 4 '#E69F00', \
                                 5 '#D55E00', 6 '#000000')
set cbrange [-0.5:6.5]
set cbtics scale 0 ('at most 4' 0, '32' 1, '256' 2, '2048' 3, '16384' 4, 'more' 5, 'no value' 6)
set cblabel 'error in ulp' offset 0,0.3
set border 3
set tics out nomirror
set format x '10^{%g}'
set multiplot layout 1,2 margins 0.08,0.98,0.25,0.84 spacing 0.1 \
    title 'Where the incomplete functions give a value, and with what error' font ',15'

set title 'P(a, x)' font ',13'
set xlabel 'a'
set ylabel 'x / a'
set xrange [-1:5]
set yrange [-1:1]
set ytics ('0.1' -1, '0.2' -0.69897, '0.5' -0.30103, '1' 0, '2' 0.30103, '5' 0.69897, '10' 1)
unset colorbox
plot data index 0 using 1:2:3 with image notitle
set colorbox horizontal user origin 0.15,0.1 size 0.7,0.03

set title 'I_x(a, b) at the mean, x = a / (a + b)' font ',13'
set ylabel 'b'
set xrange [-1:6]
set yrange [-1:6]
set ytics 1
set format y '10^{%g}'
plot data index 1 using 1:2:3 with image notitle
unset multiplot
