UTF-8

1 #1
{
	Description: A rook mates, "quoted" & <marked>
	FEN: k7/8/1K6/8/8/8/8/7R
	Answer: Rh1-h8
}
2 #2 AllSolutions
{
	Description: Two keys
	FEN: k7/8/2K5/8/8/8/8/7R
	Answer: Kc6-c7, Kc6-b6
}
3 #3
{
	Description: S. Loyd
	FEN: 8/6R1/7p/5K1k/8/6p1/5bPP/4N3
}
4 #1
{
	FEN: k7/8/2K5/8/8/8/8/7R
}
5 s#2
{
	FEN: k7/8/2K5/8/8/8/8/7R
}
6 #1 Requires Qr
{
	FEN: k7/8/1K6/8/8/8/8/7R
	Answer: Rh1-h8
}
7 #1 NoMirror
{
	FEN: 8/8/8/8/8/5k2/R7/4K2R
	Answer: Rh1-h3
}
8 #2 GUICheck 2
//!VARIANTS
//!{Main variant} 1.Kc6-c7 Ka8-a7 2.Rh1-a1
//!ENDVARIANTS
{
	FEN: k7/8/2K5/8/8/8/8/7R
	Answer: Kc6-c7
}
9 #6
{
	Description: Long enough for the register
	FEN: 8/4p2p/nn6/2p2N2/8/8/4NK2/7k
}
10 #2 GUICheck 2
//!VARIANTS
//!{Main variant} 1.Kc6-c7 Ka8-a7 2.Rh1-h7
//!ENDVARIANTS
{
	FEN: k7/8/2K5/8/8/8/8/7R
}
11 #4 AllSolutions AllSolutionsRequires R
{
	Description: A key and its order
	FEN: 8/8/8/8/8/Q7/4p3/5k1K
}
12 #2
{
	FEN: k7/8/2K5/8/8/8/8/7R
	ExpectedSortWhiteMovesOnly: Rh1-h8
}
