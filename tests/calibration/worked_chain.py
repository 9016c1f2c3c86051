# Independent worked example of the calibration chain: 3 pairs on 0..10,
# generated model 5 %, smoothing 10, thresholds 0, coefficients 68.2/95.4.
import struct, math
f=lambda x: struct.unpack('f',struct.pack('f',x))[0]
N=251
T1,T2=0.0,10.0
GL=f(1.125*T1-0.125*T2); step=(T2-T1)/200; RW=f(abs(T1-T2))
val=lambda i: GL+i*step
s=f(RW*5/100.0)
norm=math.pow(6.2831853071796,0.5)*s
M1=[[f(math.exp(-((val(j)-val(i))**2)/(2*(s*s)))/norm) for j in range(N)] for i in range(N)]
pairs=[(2,2),(4.8,4.5),(5.2,5.5)]
def rnd(x):
    return int(round(x))  # python round: half to even
M0={}
for x,y in pairs:
    i=rnd((x-GL)/step); j=rnd((y-GL)/step)
    M0[(i,j)]=M0.get((i,j),0)+1
rows={}
for (i,j),n in M0.items(): rows.setdefault(i,[]).append((j,n))
M2={}
for p,lst in rows.items():
    acc=[0.0]*N
    for k,n in sorted(lst):
        for j in range(N): acc[j]=f(acc[j]+f(n*M1[k][j]))
    M2[p]=acc
H=10.0
M3=lambda i,j: f((1-abs(i-j)/H)*0.5) if H>=abs(i-j) else 0.0
M4=[[0.0]*N for _ in range(N)]
for p in range(N):
    ks=[k for k in sorted(M2) if abs(p-k)<=10]
    for j in range(N):
        acc=0.0
        for k in ks: acc=f(acc+f(M3(p,k)*M2[k][j]))
        M4[p][j]=acc
# NormalizeH with Slider5 = 0
M5=[[0.0]*N for _ in range(N)]
for q in range(N):
    S=sum(M4[p][q] for p in range(N))
    if S==0: continue
    for p in range(N): M5[p][q]=f(M4[p][q]/S)
# NormalizeV with Slider6 = 0
M6=[[0.0]*N for _ in range(N)]
med=[0]*N
for p in range(N):
    S5=sum(M5[p])
    if S5==0: continue
    M6[p]=[f(v/S5) for v in M5[p]]
for p in range(N):
    T=sum(M6[p])
    if T==0: med[p]=0; continue
    half=f(T/2); C=0.0
    for q in range(N):
        C+=M6[p][q]
        if C>half: med[p]=q; C=0.0
for p in range(N):
    q=med[p]
    if q>0: M6[p][q]=-M6[p][q]
c1,c2=0.682,0.954
M7=[[0.0]*N for _ in range(N)]; mode=[0]*N; lv={}
for p in range(N):
    col=M6[p]; peak=0.0; total=0.0
    for q in range(N):
        v=abs(col[q])
        if v>peak: peak=v; mode[p]=q
        total+=v
        if total==0: mode[p]=-9999; med[p]=-9999
    if not total>0: continue
    l1=l2=0.0; d1=d2=1.0
    for k in range(1,11):
        delta=peak/2.0**k
        l1=f(l1+d1*delta); l2=f(l2+d2*delta)
        m1=sum(abs(v) for v in col if abs(v)>l1); m2=sum(abs(v) for v in col if abs(v)>l2)
        d1=1.0 if c1<m1/total else -1.0
        d2=1.0 if c2<m2/total else -1.0
    lv[p]=(l1,l2)
    for q in range(N):
        v=abs(col[q]); c=0.0
        if v>l1: c+=1
        if v>l2: c+=1
        if q>0 and q==mode[p]: c=3.0
        if col[q]<0: c=-c; med[p]=q
        M7[p][q]=c
for p in (121,125,129):
    m=mode[p]; d=med[p]
    cells=[(q, repr(M6[p][q]), M7[p][q], repr(f(M7[p][q]+M6[p][q]))) for q in (m-8,m,d,m+8,150) ]
    print(p, "mode",m,"median",d,"levels",repr(lv.get(p)),cells)
