# Draws <folder>/lasso.png from what example_lasso wrote:
#   gnuplot -e "folder='build/gallery'" examples/lasso.gp

data = folder.'/lasso.dat'
set terminal pngcairo size 900,600 font 'DejaVu Sans,11'
set output folder.'/lasso.png'

# The colours are those of Okabe and Ito, which colour-blind people can tell apart; five of them,
# solid for the first five variables and dashed for the others. A line begins where its variable
# enters.
colours = '0x0072B2 0xD55E00 0x009E73 0xCC79A7 0xE69F00'
colour(i) = int(word(colours, int(i) % 5 + 1))

stats data index 0 using 2 nooutput
count = STATS_records
stats data index 1 using 1 nooutput
end = STATS_max

set title 'Diabetes: ten measurements enter a linear model' font ',15' offset 0,0.5
set border 3
set xlabel 'sum of the absolute values of the coefficients'
set ylabel 'coefficient (progression score per standard deviation)'
set x2label 'variable enters' offset 0,-0.5
set xrange [0:end]
set x2range [0:end]
set yrange [-42:42]
set xtics 20 nomirror
set ytics 10 nomirror
set x2tics scale 0 offset 0,-0.3
set rmargin 6
set xzeroaxis lt 1 lc rgb 'black'
set dashtype 2 (9, 4)
unset key
plot data index 0 using 2:(-42):(0):(84):x2ticlabels(sprintf('%d', $0 + 1)) axes x2y1 \
         with vectors nohead dt 3 lc rgb '#999999', \
     for [i=0:count-1] data index i+1 using 1:2 \
         with lines lw 2.5 dt i/5+1 lc rgb colour(i), \
     data index 0 using (end):3:1:(colour($0)) with labels left offset 0.8,0 tc rgb variable
